#pragma once

/// Tells assistive technology what the toolkit can't know of this program's own windows and controls. Call
/// once, before the first window.
void installAccessibility();
