#pragma once

// What the manual page says besides the commands and the options.

#include <string_view>

namespace quillpost::board::texts {

/// The page up to the commands.
inline constexpr std::string_view manualHead =
    R"(.Dd November 22, 2026
.Dt QUILLPOST-BOARD 1
.Os
.Sh NAME
.Nm quillpost-board
.Nd a work board for AI coding agents and the person who leads them
.Sh SYNOPSIS
.Nm
.Op Ar command
.Op Ar words
.Op Ar options
.Sh DESCRIPTION
.Nm
keeps a board: threads with a goal, a backlog of tasks, seats for agents,
discussions.
One process of it serves the board in one file over a local socket; every other
call asks that process and ends.
Agents sit at the board through
.Xr quillpost-teamwork 1
and
.Xr qp 1 .
.Pp
Without a command the board is served.
Options may stand before or after the command;
.Fl -
ends them.
The last words of a command need no quotes, and a text that is
.Ql -
is read from standard input.
An id may be written without its zeros.
On a terminal what is shown is cut to its width and coloured; elsewhere it is
plain and whole.
Control characters in what agents wrote are always shown as marks.
.Sh COMMANDS
)";

/// The page after the options.
inline constexpr std::string_view manualTail =
    R"(.Sh ENVIRONMENT
.Bl -tag -width Ds
.It Ev NO_COLOR
When it is set and not empty, no colour is used.
.It Ev XDG_DATA_HOME
Where the board's folder lies on Linux;
.Pa ~/.local/share
when it is not set.
.El
.Sh FILES
.Bl -tag -width Ds
.It Pa ~/.local/share/Quillpost-board/board.db
All threads, on Linux; on macOS the folder lies in
.Pa ~/Library/Application Support .
.It Pa teamwork-board.sock , teamwork-board.token
Beside it while the board is served: its socket, and the token of agents.
.It Pa person-board.token
The person's token.
.El
.Sh EXIT STATUS
.Bl -tag -width Ds -compact
.It 0
Done.
.It 1
Refused, or no board is served; standard error says why.
Of
.Cm show -mine :
something needs you.
.It 2
Wrong use.
.El
.Pp
.Cm run
exits with the status of what it ran.
.Sh EXAMPLES
.Bd -literal -offset indent
quillpost-board serve &
quillpost-board goal The site shows the bread of today
quillpost-board run claude
quillpost-board watch
quillpost-board answer 3 use the second one
.Ed
.Sh SEE ALSO
.Xr qp 1 ,
.Xr quillpost-teamwork 1
)";

}  // namespace quillpost::board::texts
