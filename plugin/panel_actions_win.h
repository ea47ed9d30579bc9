// panel_actions_win.h - what the radio panel's keys ask of the rest of the plugin.
#pragma once
#include "panel/panel_model.h"

struct PluginState;

// [ui] The settings dialog and the message window are not there yet: both keys do nothing until they are.
class PluginPanelActions final : public PanelActions {
  public:
    explicit PluginPanelActions(PluginState& plugin) : plugin_(plugin) {}
    void openSettings() override;
    void toggleTextWindow() override;

  private:
    PluginState& plugin_;
};
