#pragma once

#include <QtGlobal>

class QApplication;
class QMessageLogContext;
class QString;

/// Sets up what the windows of this program need: style, colours, resources, texts and the classes that their
/// description names.
void setUpApplication(QApplication& application);

/// Handles Qt's own messages. Critical and fatal ones are written to the log, which is otherwise about the
/// device; warnings (no runtime folder, no theme, no bus) are dropped. When the connection to the display
/// ends, the program ends with status 0, unless Qt connects again.
void logQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message);

/// Runs the program: sets the application up, opens the window that "Main" describes and handles events until
/// the end. Takes nothing from the command line but what Qt itself understands. Ends by exit.
[[noreturn]] int applicationMain(int argc, char** argv);
