#pragma once

class QWidget;

/// Shows the window and runs it modally: the program's other windows are inert until the run ends. Returns
/// when `stopModal` is called, or when the window is closed or hidden by whatever means.
void runModalForWindow(QWidget& window);

/// Ends the innermost modal run, if there is one. Neither closes its window nor ends the program.
void stopModal();
