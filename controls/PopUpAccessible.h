#pragma once

class QAccessibleInterface;
class QObject;

/// The accessible interface of a `CustomPopUpButton`, of its menu or of an item in it; absent for any other object. The
/// pop-up is a combo box with its name, the selected title as its text, and the menu as its child, open or not.
[[nodiscard]] QAccessibleInterface* makePopUpAccessible(QObject* object);
