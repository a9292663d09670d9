#pragma once

class QWidget;

namespace Zph::Applications::Player::InputGate {

/// Lets the event loop catch up in the midst of work: everything but the user's input, save what goes to
/// `window` and to a modal dialog on top. Input to other windows is dropped, as nothing of it may reach the
/// program in the midst of this work.
void processEvents(const QWidget& window);

} // namespace Zph::Applications::Player::InputGate
