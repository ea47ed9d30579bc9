// message_intake.h - a text message on its way from the host into the store, and what it sets off.
#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include "base/clock.h"
#include "base/host_functions.h"
#include "messages/message_store.h"
#include "settings/settings_store.h"

// The message window, as far as a new message concerns it.
class NewestMessageOpener {
  public:
    NewestMessageOpener() = default;
    NewestMessageOpener(const NewestMessageOpener&) = delete;
    NewestMessageOpener& operator=(const NewestMessageOpener&) = delete;
    virtual ~NewestMessageOpener() = default;
    // [host] Asks for the newest page unless the window is visible already; never waits.
    virtual void openNewest() = 0;
};

// What a new message sets off beside the store; all outlive the call.
struct AlertContext {
    const HostFunctions& host;
    SettingsStore& settings;
    std::uint64_t schid;  // the current server, 0 none
    // Of the chime, UTF-8; asked only when it is to sound. May throw.
    const std::function<std::string()>& alertPath;
    NewestMessageOpener& window;
};

// [host] The chime if text_alert is on; the window if text_auto_open is. Out of memory costs what needed it.
void playTextAlert(const AlertContext& context) noexcept;

// As the host hands it over; both texts zero-terminated UTF-8.
struct HostText {
    const char* sender = nullptr;  // null: the host gives none
    const char* text = nullptr;    // null or empty: nothing happens
    std::uint16_t target = 0;      // MessageTarget
    std::uint16_t senderId = 0;
};

// [host] Stores the message, logs it, plays the alert. What there is no memory for is left out; if that is the message
// itself, the log says so.
void takeTextMessage(const HostText& message, MessageStore& store, const Clock& clock,
                     const AlertContext& context) noexcept;
