#include "panel/panel_picture.h"
#include "panel/panel_volume.h"

namespace {

FrequencyPicture pictureOf(const FoldedFrequency& folded) {
    return {folded.frequencyKHz, folded.isPending ? FrequencyState::kPending : FrequencyState::kConfirmed};
}

std::array<FrequencyPicture, 2> frequenciesOf(const SimState& sim, const Commands& commands, std::int32_t radio) {
    const RadioReading* reading = radioOf(sim, radio);
    if (!sim.connected || !reading) return {};
    const FoldedFrequencies folded = foldFrequencies(*reading, commands, radio, sim.ackId);
    return {pictureOf(folded.active), pictureOf(folded.standby)};
}

// Whether what the element stands for is on; a custom key counts as the element bound to it.
bool isOn(const Settings& settings, std::int32_t element) {
    switch (element) {
        case kCom1Key:
            return selectedRadio(settings) == 1;
        case kCom2Key:
            return selectedRadio(settings) == 2;
        case kActiveKey:
            return settings.target == 0;
        case kStandbyKey:
            return settings.target != 0;
        case kAutoKey:
            return settings.enabled;
        case kPinKey:
            return settings.pin;
        case kCustomKeyB:
        case kCustomKeyC:
        case kCustomKeyD:
        case kCustomKeyE:
            return isOn(settings, boundElement(bindingOf(settings, element)));
        default:
            return false;
    }
}

std::uint32_t litElementsOf(const Settings& settings) {
    std::uint32_t lit = 0;
    for (const PanelHotspot& hotspot : themeLayout(settings.theme).hotspots)
        if (hotspot.indicator.width > 0.0f && isOn(settings, hotspot.id))
            lit |= 1U << static_cast<unsigned>(hotspot.id);
    return lit;
}

// BOEING and AIRBUS have a lamp above their TEXT key.
bool isTextLit(const PanelInputs& inputs) {
    const PanelHotspot* key = findHotspot(themeLayout(inputs.settings.theme), kCustomKeyA);
    return key && inputs.unreadTexts > 0 && inputs.nowMs / kTextFlashMs % 2 == 0;
}

// GENERAL's key has no lamp: its legend shows it, for as long as there is something to read.
bool isTextTinted(const PanelInputs& inputs) {
    return findHotspot(themeLayout(inputs.settings.theme), kTextKey) && inputs.unreadTexts > 0;
}

}  // namespace

std::string frequencyDigits(const FrequencyPicture& picture) {
    if (picture.state == FrequencyState::kDisconnected) return "000000";
    if (picture.frequencyKHz <= 0 || picture.frequencyKHz > 999999) return "------";
    std::string digits = std::to_string(picture.frequencyKHz);
    return digits.insert(0, 6 - digits.size(), '0');
}

PanelPicture makePicture(const PanelInputs& inputs, const PanelModel& model, const PanelPlacement& placement) {
    const Settings& settings = inputs.settings;
    const std::int32_t radio = selectedRadio(settings);
    PanelPicture picture;
    picture.theme = knownTheme(settings.theme);
    picture.scale = placement.scale;
    picture.width = placement.width;
    picture.height = placement.height;
    picture.frequencies = frequenciesOf(inputs.sim, inputs.commands, radio);
    picture.volumePercent = panel_volume(inputs.commands, inputs.sim, settings, radio);
    picture.volumeAngle = picture.volumePercent * 2.7f - 135.0f;
    picture.largeKnobAngle = model.large_knob_angle;
    picture.smallKnobAngle = model.small_knob_angle;
    picture.pressLevel = model.press_level;
    if (model.press_level > 0.0f) picture.pressedElement = model.pressed_element;
    picture.litElements = litElementsOf(settings);
    picture.pinned = settings.pin;
    picture.txLit = settings.radio_lamps && inputs.ownTransmit;
    picture.rxLit = settings.radio_lamps && inputs.othersReceiving;
    picture.textLit = isTextLit(inputs);
    picture.textTinted = isTextTinted(inputs);
    picture.statusText = inputs.status.statusText;
    picture.channelStatus = inputs.status.channelStatus;
    return picture;
}
