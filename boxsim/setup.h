#pragma once

#include "boxsim/bench/bench.h"
#include "boxsim/options.h"

#include <QtCore/QString>

#include <memory>

namespace boxsim {

/// What a run is made of.
struct Setup {
    BenchOptions bench;
    std::unique_ptr<Script> script;
};

/// Reads the files that the options name, and makes the run that they ask for.
///
/// A seed that is given counts, then one that the scenario names. Without both one is drawn, which the run
/// then tells.
/// @param error  set to one line that names the file and what is wrong with it
/// @return whether all could be read
bool setUp(const Options &options, Setup *setup, QString *error);

/// Checks the scenario of the options.
/// @param report  set to one line: how many steps there are
/// @param error  set to one line that names the file and what is wrong with it
/// @return whether it is correct
bool checkScenario(const Options &options, QString *report, QString *error);

} // namespace boxsim
