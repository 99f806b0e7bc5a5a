#include "windows/WindowController.h"

WindowController::WindowController() = default;
WindowController::~WindowController() = default;
