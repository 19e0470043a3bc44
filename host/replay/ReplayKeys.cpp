#include "host/replay/ReplayKeys.h"

namespace Host {

void ReplayKeys::press(const KeyPress& press, View& view)
{
    if (press == KeyPress{Key::Letter, ' '} && !view.isTyping())
        _pace.switchPause();
    else if (press._key == Key::Right)
        _pace.goToNextFrame();
    else if (press._key == Key::Up)
        _pace.faster();
    else if (press._key == Key::Down)
        _pace.slower();
    else
        view.press(press);
}

bool ReplayKeys::read(View& view)
{
    const std::vector<KeyPress> presses = _presses.read(_keyboard.read());
    if (_keyboard.isBack())
        view.terminalIsBack();
    for (const KeyPress& key : presses)
        press(key, view);
    return !presses.empty();
}
} // namespace Host
