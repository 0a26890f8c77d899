#pragma once

#include "desktop/linux/files/user_folders.h"

namespace tavrelon::program {

/// How a report is written: for people, or as one JSON object.
enum class ReportForm { Lines, Json };

/// Looks at all that the program counts on in this session, asks the chosen service one short question, and prints
/// what works and what is missing. Beside a running program too, which it leaves alone: no hotkey is taken,
/// nothing is stored. Each look is bounded. The result is the exit status: how much is missing.
int check(int argc, char** argv, const desktop::UserFolders& folders, ReportForm form);

}  // namespace tavrelon::program
