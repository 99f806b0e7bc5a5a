#pragma once

class QApplication;

/// Gives all windows their style, palette and style sheet. The bundle must be open.
void setLook(QApplication& application);
