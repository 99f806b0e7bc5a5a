#pragma once

#include <QtGlobal>

class QApplication;
class QMessageLogContext;
class QString;

/// Sets up style, palette, resources and texts, and registers the classes that the window description names.
void setUpApplication(QApplication& application);

/// Handles Qt's own messages. Logs critical and fatal ones and those about a display that can't be used; drops other
/// warnings (no runtime folder, no theme, no bus). When the connection to the display ends, the program ends with
/// status 0, unless Qt connects again.
void logQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message);

/// Runs the program: sets the application up, opens the window that "Main" describes and handles events until the end.
/// Accepts only Qt's own command-line options. Ends by exit.
[[noreturn]] int applicationMain(int argc, char** argv);
