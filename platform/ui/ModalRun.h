#pragma once

class QWidget;

/// Shows the window and runs it modally: the program's other windows are inert until the run ends. Returns when
/// `stopModal` is called, or when the window is closed or hidden. A pressed slider or label of another window is
/// released.
void runModalForWindow(QWidget& window);

/// Whether a modal run of another window makes the control's window inert.
[[nodiscard]] bool isBehindModalRun(const QWidget& control);

/// Whether an action of a control must be dropped, because a modal run makes its window inert (assistive technology
/// reaches inert windows too). If so, restores the values that the window's controls had when the run began.
[[nodiscard]] bool dropBehindModalRun(const QWidget& control);

/// Ends the innermost modal run, if there is one. Neither closes its window nor ends the program.
void stopModal();
