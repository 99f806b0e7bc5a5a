#pragma once

#include <functional>

class QObject;

/// Runs `act` at every action of the user on a control, wherever it comes from: mouse, wheel, keys or
/// assistive technology. Block the control's signals while showing a value, so that showing is no action.
/// A control of a kind that has no action is a fatal stop.
void connectUserAction(QObject& control, std::function<void()> act);
