#pragma once

#include <functional>
#include <string>
#include <vector>

/// What is measured, whatever by: instructions, allocations and times are taken of the same cases.
namespace bench {

/// Where a case runs. What the library does depends on it: a signal to an object of another thread is posted.
enum class Place {
    MainThread,
    ParserThread, ///< any but the main one, like the library's parser thread
};

struct Case {
    std::string name;              ///< what it shows, and its size: "receive/15"
    std::function<void()> prepare; ///< makes ready for one body; is not measured
    std::function<void()> body;
    int parts = 1; ///< of how many equal parts the body consists; a part is what is reported
    Place place = Place::MainThread;
};

/// Runs a case so many times, each body between `begin` and `end`.
void run(const Case &measured, int repetitions, const std::function<void()> &begin,
         const std::function<void()> &end);

/// All cases, in the order of the table. The first, "nothing", has an empty body: what it costs is the
/// measuring's own.
std::vector<Case> allCases();

// The cases by what they are about: a file each.
std::vector<Case> receiveCases();  ///< the receive core, and a bare pass over the same bytes
std::vector<Case> scalingCases();  ///< the receive core over growing frames and buffers
std::vector<Case> passCases();     ///< a whole parsing pass, joined to a port and the facade
std::vector<Case> loggingCases();  ///< a line of the log
std::vector<Case> decodingCases(); ///< the groups' payloads
std::vector<Case> buildingCases(); ///< texts and commands

} // namespace bench
