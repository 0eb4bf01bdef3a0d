// The one line of a terminal that is written over and over (timeint/progress.h), and what must go ahead of everything else that
// comes to the same terminal.
#pragma once

namespace zurt {

/// True when standard error is a terminal that can erase a line.
bool StandardErrorIsTerminal();

/// Empties the line on which standard error stands; nothing where it is no terminal. Called ahead of every message.
void EraseTerminalLine();

} // namespace zurt
