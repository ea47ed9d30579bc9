#include "tests/simulator/key_events.h"
#include <algorithm>
#include <iterator>
#include "tests/simulator/wire.h"

namespace standin {

namespace {

bool setActiveHz(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t data) {
    return tune(aircraft, habits, radio, kActive, data);
}

bool setStandbyHz(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t data) {
    return tune(aircraft, habits, radio, kStandby, data);
}

// 0x2797 is 127.97 MHz.
std::uint32_t hzOfBcd16(std::uint32_t bcd) {
    const auto digit = [&](unsigned place) { return bcd >> 4U * place & 0xFU; };
    return 100'000'000U + 10'000U * (digit(3) * 1000U + digit(2) * 100U + digit(1) * 10U + digit(0));
}

bool setActiveBcd(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t data) {
    return tune(aircraft, habits, radio, kActive, hzOfBcd16(data));
}

bool setStandbyBcd(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t data) {
    return tune(aircraft, habits, radio, kStandby, hzOfBcd16(data));
}

bool swapFrequencies(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t) {
    return swap(aircraft, habits, radio);
}

bool setVolumePercent(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t data) {
    return setVolume(aircraft, habits, radio, std::min(data, 100U));
}

bool increaseVolume(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t) {
    return setVolume(aircraft, habits, radio, aircraft.radios[radio].volumePercent + 2.0);
}

bool decreaseVolume(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t) {
    return setVolume(aircraft, habits, radio, aircraft.radios[radio].volumePercent - 2.0);
}

bool selectReceive(Aircraft& aircraft, const Habits&, std::size_t radio, std::uint32_t data) {
    aircraft.radios[radio].isReceiving = data != 0;
    return true;
}

bool selectTransmitter(Aircraft& aircraft, const Habits&, std::size_t, std::uint32_t data) {
    if (data >= kRadios || !aircraft.radios[data].isFitted) return false;
    aircraft.transmitting = data;
    return true;
}

bool switchSpacing(Aircraft& aircraft, const Habits&, std::size_t radio, std::uint32_t) {
    if (!aircraft.radios[radio].isFitted) return false;
    aircraft.radios[radio].is833 = !aircraft.radios[radio].is833;
    return true;
}

// COM1's frequency events have no 1 in their names; its swap and volume events do. COM3's names are like COM2's.
// clang-format off
constexpr KeyEvent kKeyEvents[] = {
    {"COM_RADIO_SET_HZ",          0, setActiveHz},
    {"COM2_RADIO_SET_HZ",         1, setActiveHz},
    {"COM3_RADIO_SET_HZ",         2, setActiveHz},
    {"COM_STBY_RADIO_SET_HZ",     0, setStandbyHz},
    {"COM2_STBY_RADIO_SET_HZ",    1, setStandbyHz},
    {"COM3_STBY_RADIO_SET_HZ",    2, setStandbyHz},
    {"COM_RADIO_SET",             0, setActiveBcd},
    {"COM2_RADIO_SET",            1, setActiveBcd},
    {"COM3_RADIO_SET",            2, setActiveBcd},
    {"COM_STBY_RADIO_SET",        0, setStandbyBcd},
    {"COM2_STBY_RADIO_SET",       1, setStandbyBcd},
    {"COM3_STBY_RADIO_SET",       2, setStandbyBcd},
    {"COM1_RADIO_SWAP",           0, swapFrequencies},
    {"COM_RADIO_SWAP",            0, swapFrequencies},
    {"COM_STBY_RADIO_SWAP",       0, swapFrequencies},
    {"COM2_RADIO_SWAP",           1, swapFrequencies},
    {"COM3_RADIO_SWAP",           2, swapFrequencies},
    {"COM1_VOLUME_SET",           0, setVolumePercent},
    {"COM2_VOLUME_SET",           1, setVolumePercent},
    {"COM3_VOLUME_SET",           2, setVolumePercent},
    {"COM1_VOLUME_INC",           0, increaseVolume},
    {"COM2_VOLUME_INC",           1, increaseVolume},
    {"COM1_VOLUME_DEC",           0, decreaseVolume},
    {"COM2_VOLUME_DEC",           1, decreaseVolume},
    {"COM1_RECEIVE_SELECT",       0, selectReceive},
    {"COM2_RECEIVE_SELECT",       1, selectReceive},
    {"PILOT_TRANSMITTER_SET",     0, selectTransmitter},
    {"COM_1_SPACING_MODE_SWITCH", 0, switchSpacing},
    {"COM_2_SPACING_MODE_SWITCH", 1, switchSpacing},
};
// clang-format on

}  // namespace

const KeyEvent* findKeyEvent(std::string_view name) {
    const auto* row = std::find_if(std::begin(kKeyEvents), std::end(kKeyEvents),
                                   [&](const KeyEvent& event) { return isSameName(event.name, name); });
    return row == std::end(kKeyEvents) ? nullptr : row;
}

}  // namespace standin
