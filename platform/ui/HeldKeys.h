#pragma once

/// From now on a held key is one press in every window: its repeats run no shortcut and press no control. Keys that
/// move a slider's knob, the cursor in a text or the focus still repeat, but only as fast as the program handles them.
/// Call once, after the application object was made.
void ignoreHeldKeys();
