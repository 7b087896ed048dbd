#pragma once

class QWidget;

namespace finora {

class SettingsStore;

// Where resizable windows keep their size and place ("WindowPositions"); the main window sets
// it for its lifetime. Without one, windows simply open at their default size.
void setWindowLayoutStore(SettingsStore* store);

// Puts `window` where it was last closed (if that still fits a screen) and remembers its
// geometry whenever it is hidden. The window keeps its minimum size and its size grip.
void keepWindowGeometry(QWidget* window, const char* name);

} // namespace finora
