#pragma once

#include <QtGlobal>

class QApplication;
class QMessageLogContext;
class QString;

/// Gives an application all that the windows of this program need: style, colours, resources, texts and the
/// classes that their description names.
void setUpApplication(QApplication& application);

/// Where Qt's own messages go. The log is for what the program says of the device; of the toolkit it takes
/// only what ends the program or stops it from working. Its warnings (a runtime folder, a theme, a bus that
/// is not there) help nobody. The end of the display ends the program with status 0, unless Qt connects
/// again.
void logQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message);

/// Runs the program: sets the application up, opens the window that "Main" describes and handles events until
/// the end. Takes nothing from the command line but what Qt itself understands. Ends by exit.
[[noreturn]] int applicationMain(int argc, char** argv);
