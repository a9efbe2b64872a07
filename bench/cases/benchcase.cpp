#include "benchcase.h"

#include <thread>
#include <utility>

namespace bench {

namespace {

void runHere(const Case &measured, int repetitions, const std::function<void()> &begin,
             const std::function<void()> &end)
{
    for (int i = 0; i < repetitions; ++i) {
        measured.prepare();
        begin();
        measured.body();
        end();
    }
}

} // namespace

void run(const Case &measured, int repetitions, const std::function<void()> &begin,
         const std::function<void()> &end)
{
    if (measured.place == Place::MainThread)
        runHere(measured, repetitions, begin, end);
    else
        std::thread([&] { runHere(measured, repetitions, begin, end); }).join();
}

std::vector<Case> allCases()
{
    std::vector<Case> all {{"nothing", [] {}, [] {}}};
    for (const auto &cases :
         {receiveCases, scalingCases, passCases, loggingCases, decodingCases, buildingCases}) {
        for (Case &one : cases())
            all.push_back(std::move(one));
    }
    return all;
}

} // namespace bench
