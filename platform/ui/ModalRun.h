#pragma once

class QWidget;

/// Shows the window and runs it modally: the program's other windows are inert until the run ends. Returns
/// when `stopModal` is called, or when the window is closed or hidden by whatever means. A key that was held
/// down before does nothing in it, and what was being pressed in another window is let go.
void runModalForWindow(QWidget& window);

/// Whether a modal run of another window makes the control's window inert.
[[nodiscard]] bool isBehindModalRun(const QWidget& control);

/// For an action of a control, whoever sent it (assistive technology reaches inert windows too): true if it
/// must be dropped. The controls of its window then show again what they showed when the run began.
[[nodiscard]] bool dropBehindModalRun(const QWidget& control);

/// Ends the innermost modal run, if there is one. Neither closes its window nor ends the program.
void stopModal();
