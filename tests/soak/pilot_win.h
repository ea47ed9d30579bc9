// pilot_win.h - a restless pilot: presses, turns and drags whatever the panel has, moves it about, reads messages,
// opens the settings dialog from the menu, the panel or the host's list of plugins, and changes everything in it.
// [host] On the main thread; each deed returns when the windows have been told.
#pragma once
#include <windows.h>
#include <atomic>
#include <filesystem>
#include <thread>
#include "settings/settings.h"
#include "tests/client/dialog_driver_win.h"
#include "tests/client/panel_driver_win.h"
#include "tests/client/plugin_library_win.h"
#include "tests/soak/dice.h"
#include "tests/soak/progress.h"

class Pilot {
  public:
    Pilot(const PluginLibrary& plugin, std::filesystem::path settingsFile, Progress& progress, std::uint64_t seed);
    ~Pilot();  // leaves no dialog open
    Pilot(const Pilot&) = delete;
    Pilot& operator=(const Pilot&) = delete;

    // Every language, theme and page, the largest panel: what is made once and kept is made now. False if no dialog
    // opens.
    bool tour();
    void act();  // one deed at random
    // After a last look in another language and theme, comes to rest: the panel shown as after a reset, in English and
    // GENERAL, BOEING before, the message window open but for the newest texts empty, no dialog. False if the windows
    // do not get there within minutes.
    bool rest();
    // So far.
    std::uint64_t deeds() const { return deeds_; }
    std::uint64_t dialogs() const { return dialogs_; }  // opened
    std::uint64_t looks() const { return looks_; }      // languages and themes applied together
    std::uint64_t drags() const { return drags_; }      // of the panel

  private:
    Settings settings() const;
    PanelDriver panel() const { return {findPanel(), settings().theme}; }

    void useKeys();
    void useKnobs();
    void askPanel();
    void dragPanel();
    void readMessages();
    void chooseMenu(int entry) const;

    bool openDialog();
    void beginConfiguring();
    void changeInDialog();
    void changeRow(const DialogDriver& dialog);
    void changeLook(const DialogDriver& dialog);
    void dragDialog();
    bool closeDialog();  // false if it stays
    bool waitWindowsIdle() const;

    const PluginLibrary& plugin_;
    const std::filesystem::path settingsFile_;
    Progress& progress_;  // told what he does
    Dice dice_;
    int page_ = 0;             // of the dialog
    std::thread configuring_;  // the host's thread in ts3plugin_configure
    std::atomic<bool> isConfiguring_{false};
    std::uint64_t deeds_ = 0, dialogs_ = 0, looks_ = 0, drags_ = 0;
};
