// The commands that ask a served board once, and print what it says.

#include "base/environment.h"
#include "base/text.h"
#include "board/person/client.h"
#include "board/person/command_path.h"
#include "board/person/commands.h"
#include "board/person/console.h"
#include "board/person/seat.h"
#include "board/person/sheet.h"

namespace quillpost::board {

int ask(const Line& line, const Surroundings&) {
  std::string why;
  const std::optional<TeamworkResponse> response = askServed(line, line.request, why);
  if (!response) return complain(why);
  print(response->message.value_or("Done."));
  if (response->notice) complain(*response->notice);
  return 0;
}

int show(const Line& line, const Surroundings&) {
  std::string why;
  const std::optional<Sheet> sheet = askForSheet(line, viewOf(line), why);
  if (!sheet) return complain(why);
  const std::string text =
      line.asJson ? sheetJson(*sheet) : sheetText(*sheet, pageOf(ProcessEnvironment()));
  if (text.empty()) {
    print(line.mineOnly ? "Nothing needs you." : "There is nothing to show.");
  } else {
    printLaidOut(text);
  }
  const Section* const needs = sheet->find("needs");
  return line.mineOnly && needs != nullptr && !needs->rows.empty() ? failure : 0;
}

int makeSeat(const Line& line, const Surroundings& around) {
  std::string why;
  const std::optional<NewSeat> seat = askForSeat(line, why);
  if (!seat) return complain(why);
  print(text::cat(seat->lines, commandPathLine(around.program, ProcessEnvironment())));
  complain(seat->sentence);
  return 0;
}

}  // namespace quillpost::board
