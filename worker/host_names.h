// host_names.h - takes the names and addresses of other computers out of a text before it goes to somebody else.
#pragma once
#include <string>
#include <string_view>
#include <vector>

// [any] The hosts that a line of worker.ini, of a log or of a complaint about the command line gives as the address of
// a simulator: names, IPv4 and IPv6 addresses as written there. This computer is not among them (localhost, 127.0.0.1,
// ::1), nor is a number: it would be found in every other text.
std::vector<std::string> findHostNames(std::string_view line);

// [any] One line of UTF-8 with "<host>" in place of
// - each of hostNames that stands as a whole between two characters that are neither letters nor digits;
// - the host of an address as findHostNames finds it; of one that is no HOST:PORT everything goes;
// - the host that the worker names when it says that it cannot be reached ("no answer from simpc"), even if it is cut;
// - the server of a network path: \\server\share, also with doubled or forward separators.
// Upper and lower case make no difference.
std::string maskHostNames(std::string_view line, const std::vector<std::string>& hostNames);
