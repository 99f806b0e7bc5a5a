#pragma once

class QApplication;

/// Gives an application all that the windows of this program need: style, colours, resources, texts and the
/// classes that their description names.
void setUpApplication(QApplication& application);

/// Runs the program: sets the application up, opens the window that "Main" describes and handles events until
/// the end. Takes nothing from the command line but what Qt itself understands. Ends by exit.
[[noreturn]] int applicationMain(int argc, char** argv);
