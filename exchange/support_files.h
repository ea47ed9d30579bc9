// support_files.h - files of the data folder that the plugin reads or leaves and the report for support shows.
#pragma once

inline constexpr const char* kHostInterfaceFile = "host_api.txt";  // the user's word on the interface version we answer
inline constexpr const char* kLinkStateFile = "link_state.txt";    // connected, or why not, as the panel showed it last
inline constexpr const char* kHostAnswerFile = "host_api_answer.txt";  // what the plugin answered last, and why
