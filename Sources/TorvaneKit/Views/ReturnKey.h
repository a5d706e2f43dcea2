#pragma once

class QAbstractButton;
class QKeyEvent;

namespace torvane {

/// Presses a button by Return or Enter, which Qt leaves to dialogs' default buttons. True when the key was one of them;
/// one that is held presses once.
bool pressByReturn(QAbstractButton& button, const QKeyEvent& key);

} // namespace torvane
