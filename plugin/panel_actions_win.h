// panel_actions_win.h - what the radio panel's keys ask of the rest of the plugin.
#pragma once
#include "panel/panel_model.h"

struct PluginState;

// [ui] Both keys do the same as the menu entries.
class PluginPanelActions final : public PanelActions {
  public:
    explicit PluginPanelActions(PluginState& plugin) : plugin_(plugin) {}
    void openSettings() override;
    void toggleTextWindow() override;

  private:
    PluginState& plugin_;
};
