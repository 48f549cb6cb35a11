// What completes a command line, for the shells' files in ctl/completion.
//
//   ostrelctl complete words WORD...        the words behind the program's name, without quotes, up
//                                           to the cursor; the last is being typed, and may be
//                                           empty
//   ostrelctl complete line LINE REPLACED   a line of bash up to the cursor, and the text before it
//                                           that bash will replace
//
// The first line of the output says what the others are: "whole" words; "open" ones, behind which
// no blank belongs; or "files", without other lines, where a name of a file is typed. The others
// have the completed word; behind "line" as the shell has to put it in, behind "words" as it is,
// and where there is something to say about it a tab and that.
//
// Nothing goes to standard error, and no service is started or waited for: where there is none, or
// it does not reply within three seconds, no word is printed.
#pragma once

/// Does that, with the arguments behind "complete"; returns the exit status, of which nobody takes
/// notice.
int complete(int argc, char** argv);
