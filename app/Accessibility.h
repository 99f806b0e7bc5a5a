#pragma once

/// Gives assistive technology the roles and hit tests that the toolkit does not derive for this program's own windows
/// and controls. Call once, before the first window.
void installAccessibility();
