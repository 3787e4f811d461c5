#pragma once

// What the manual page says besides the verbs.

#include <string_view>

namespace quillpost::texts {

/// A status and what it means.
struct StatusMeaning {
  std::string_view number;
  std::string_view meaning;
};

// clang-format off

/// All of them, in the words of the pages.
inline constexpr StatusMeaning statusMeanings[] = {
    {"0",        "Done."},
    {"1",        "Refused, by the board or before anything was sent; the result says why."},
    {"2",        "Wrong use; standard error says what, and what was probably meant. Nothing was sent."},
    {"3",        "A wait with a deadline ended without news."},
    {"4",        "No board: outside a Thread, or the app cannot be reached."},
    {"129",      "A wait whose terminal, reader or starter has gone."},
    {"130, 143", "Interrupted."},
};

// clang-format on

/// The page up to the verbs.
inline constexpr std::string_view manualHead =
    R"(.Dd November 21, 2026
.Dt QP 1
.Os
.Sh NAME
.Nm qp
.Nd the shared work board from a shell
.Sh SYNOPSIS
.Nm
.Ar verb
.Op Ar arguments
.Oo Cm then
.Ar verb
.Op Ar arguments
.Oc
.Ar ...
.Sh DESCRIPTION
.Nm
reaches every verb of the board from the seat of this terminal, with the same
results as the tools of
.Xr quillpost-teamwork 1 .
.Pp
A verb is a tool's name, with
.Ql _
or
.Ql - ,
or its short name.
The word
.Cm then
starts the next one.
The whole line is checked before anything is sent; the verbs run in order, and
the first that is refused ends the line.
.Pp
Every property of a tool is an option, spelled as the tool has it or in small
letters with dashes.
A flag is
.Fl -blocked ,
.Fl -no-blocked
or
.Fl -blocked=false .
A list is the option repeated, or one value with commas.
.Fl -
ends the options.
A text that is
.Ql -
is read from standard input, once in a line;
.Fl -body-file Ar path
reads a file, and so does every text option with
.Ql -file
behind it.
One line feed at the end is dropped, and nothing else is changed.
.Pp
.Fl -json ,
anywhere among a verb's arguments or before the first verb, leaves only the JSON
of each result on standard output, one line a verb; a result that is text becomes
.Ql {"text":"..."} .
What stands around it goes to standard error.
)";

/// The page after the statuses.
inline constexpr std::string_view manualTail =
    R"(.Sh ENVIRONMENT
The variables of
.Xr quillpost-teamwork 1 ,
and
.Bl -tag -width Ds
.It Ev NO_COLOR
When it is set and not empty, no colour is used.
.It Ev XDG_RUNTIME_DIR , TMPDIR
Where the seat's memory lies.
.El
.Sh FILES
.Bl -tag -width Ds
.It Pa $XDG_RUNTIME_DIR/quillpost/seat-*
What the seat has seen, from one command to the next: a small file for each
seat, named by a digest.
Without that directory it lies in
.Pa quillpost-UID
in the temporary directory.
It can be deleted at any time.
.El
.Sh SEE ALSO
.Xr quillpost-teamwork 1
)";

}  // namespace quillpost::texts
