// session.h - one connected client: its packets, cut out of a byte stream and obeyed or refused, and what it is told.
// A client that asks for more than it may gets exceptions; one that breaks the framing is dropped.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>
#include "tests/simulator/data_service.h"
#include "tests/simulator/key_events.h"
#include "tests/simulator/personality.h"

namespace standin {

inline constexpr std::uint32_t kWholePause = 8;  // one of the bits of Pause_EX1; which one, no client should care

// What a session may ask of the simulator around it.
class SimulatorDesk {
  public:
    virtual ~SimulatorDesk() = default;
    virtual void onOpened(const std::string& clientName, std::uint32_t version) = 0;
    virtual void onKeyEvent(const KeyEvent& event, std::uint32_t data) = 0;
    virtual void report(const std::string& text) = 0;
    virtual bool isFlightRunning() const = 0;
    virtual bool isPaused() const = 0;
    virtual const Aircraft& aircraft() const = 0;
};

class Session {
  public:
    Session(SimulatorDesk& desk, const Personality& personality);

    // Bytes from the client, cut anywhere.
    void receive(std::string_view bytes);
    // The packets to be sent, each a whole one.
    std::vector<std::string> takePackets();
    bool isOpen() const { return protocol_ != 0; }
    bool isBroken() const { return isBroken_; }  // must be dropped

    // The simulator's side. Each does nothing before Open.
    void raiseSystemEvent(std::string_view name, std::uint32_t data);
    void raiseFileEvent(std::string_view name, std::string_view file);
    void raiseFrameEvent(float framesPerSecond);
    void hear(const KeyEvent& event, std::uint32_t data);  // tells the notification groups
    void changeAircraft() { data_.dropRequests(); }
    void endFrame(const Frame& frame);
    void quit();

  private:
    struct SystemEvent {
        std::string name;
        bool isOn = true;
    };

    void handle(std::string_view packet);
    void dispatch(Opcode opcode, std::string_view packet);
    void open(std::string_view packet);
    void mapEvent(std::string_view packet);
    void transmit(const EventRequest& request);
    void addToGroup(std::string_view packet);
    void removeFromGroup(std::string_view packet);
    void define(std::string_view packet);
    void requestData(std::string_view packet);
    void refuseData(std::string_view packet);
    void subscribe(std::string_view packet);
    void answerState(std::string_view packet);
    void refuse(ExceptionCode code, std::uint32_t parameter, const std::string& what = "");

    SimulatorDesk& desk_;
    const Personality& personality_;
    std::string input_;
    std::vector<std::string> output_;
    RequestHeader header_;  // of the present packet
    std::uint32_t protocol_ = 0;
    bool isBroken_ = false;
    DataService data_;
    std::map<std::uint32_t, const KeyEvent*> events_;  // by the client's id; null for an event of the client's own
    std::map<std::uint32_t, std::vector<std::uint32_t>> groups_;
    std::map<std::uint32_t, SystemEvent> systemEvents_;
};

}  // namespace standin
