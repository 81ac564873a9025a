#pragma once

namespace kesu::dev {

class Program;

// Each of these adds commands with their options to the program. Statuses: 0 = done, 1 = failed, after one sentence on
// standard error.

/// `serve`: starts the services and serves until SIGINT, SIGTERM or SIGHUP.
void addServeCommand(Program& program);

/// `run`: starts the services and a program that uses them, until the program ends.
///
/// The program inherits the standard streams; kesu-dev itself prints to standard error. The program receives SIGTERM
/// when kesu-dev dies, and every SIGTERM, SIGHUP and SIGINT that is sent to kesu-dev alone; after the
/// first of these it has ten seconds. Status: the program's, 128 + N when signal N ended it, 127 when there is no such
/// program, 126 when it cannot be run.
void addRunCommand(Program& program);

/// `tail`: prints each record as it arrives, through restarts of the collector, until a signal. `show`: prints all
/// records so far. `messages`: prints the messages that are served, with their receipts and button presses.
void addWatchCommands(Program& program);

/// `preview`: shows a message file in the library's own popup, in a window with remote keys, or writes a picture of it.
/// Nothing leaves this process, and nothing is kept.
void addPreviewCommand(Program& program);

}  // namespace kesu::dev
