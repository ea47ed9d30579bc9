#include "tests/simulator/answers.h"
#include "tests/simulator/wire.h"

namespace standin {

namespace {

constexpr std::size_t kFileBytes = 260;

class Answer {
  public:
    Answer(std::uint32_t protocol, std::uint32_t id) { u32(0).u32(protocol).u32(id); }
    Answer& u32(std::uint32_t value) {
        putU32(bytes_, value);
        return *this;
    }
    Answer& f32(float value) {
        putF32(bytes_, value);
        return *this;
    }
    Answer& text(std::string_view value, std::size_t width) {
        putText(bytes_, value, width);
        return *this;
    }
    Answer& bytes(std::string_view value) {
        bytes_ += value;
        return *this;
    }
    std::string sealed() {
        sealPacket(bytes_);
        return std::move(bytes_);
    }

  private:
    std::string bytes_;
};

}  // namespace

std::string openAnswer(const Edition& edition) {
    Answer answer(edition.protocol, kOpenAnswer);
    answer.text(edition.name, kNameBytes);
    for (const auto number : edition.application) answer.u32(number);
    for (const auto number : edition.simConnect) answer.u32(number);
    return answer.u32(0).u32(0).sealed();
}

std::string exceptionAnswer(std::uint32_t protocol, ExceptionCode code, std::uint32_t sendId, std::uint32_t parameter) {
    return Answer(protocol, kExceptionAnswer).u32(code).u32(sendId).u32(parameter).sealed();
}

std::string quitAnswer(std::uint32_t protocol) {
    return Answer(protocol, kQuitAnswer).sealed();
}

std::string eventAnswer(std::uint32_t protocol, std::uint32_t group, std::uint32_t eventId, std::uint32_t data) {
    return Answer(protocol, kEventAnswer).u32(group).u32(eventId).u32(data).sealed();
}

std::string filenameAnswer(std::uint32_t protocol, std::uint32_t eventId, std::string_view file) {
    Answer answer(protocol, kEventFilenameAnswer);
    return answer.u32(kUnknown).u32(eventId).u32(0).text(file, kFileBytes).u32(0).sealed();
}

std::string frameAnswer(std::uint32_t protocol, std::uint32_t eventId, float framesPerSecond) {
    Answer answer(protocol, kEventFrameAnswer);
    return answer.u32(kUnknown).u32(eventId).u32(0).f32(framesPerSecond).f32(1.0f).sealed();
}

std::string systemStateAnswer(std::uint32_t protocol, std::uint32_t requestId, std::uint32_t integer,
                              std::string_view text) {
    return Answer(protocol, kSystemStateAnswer).u32(requestId).u32(integer).f32(0.0f).text(text, kFileBytes).sealed();
}

std::string dataAnswer(std::uint32_t protocol, const DataHeader& header, std::string_view values) {
    Answer answer(protocol, kDataAnswer);
    answer.u32(header.requestId).u32(kUserObject).u32(header.defineId).u32(header.flags);
    return answer.u32(1).u32(1).u32(header.items).bytes(values).sealed();  // entry 1 of 1
}

std::string anyAnswer(std::uint32_t protocol, std::uint32_t id, std::string_view body) {
    return Answer(protocol, id).bytes(body).sealed();
}

}  // namespace standin
