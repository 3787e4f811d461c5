#include "render/roster.h"

#include "base/text.h"
#include "render/texts/roster.h"

#include <string_view>
#include <vector>

namespace quillpost {
namespace {

constexpr int64_t secondsPerMinute = 60;
/// What every agent may do; only more than that is worth a word.
constexpr std::string_view plainAuthority = "contributor";

bool holdsText(const std::optional<std::string>& text) { return text && !text->empty(); }

void addLiveness(json::Object& out, const TeamworkAgent& agent) {
  if (agent.quietForSeconds) {
    out.add("quietForSeconds", *agent.quietForSeconds);
    out.add("quietNote", texts::quietNote(*agent.quietForSeconds / secondsPerMinute));
  }
  if (!holdsText(agent.device)) {
    out.add("leaseSecondsRemaining", agent.leaseSecondsRemaining);
  } else if (holdsText(agent.seatPresence)) {
    out.add("seat", *agent.seatPresence);
    out.add("seatNote", texts::seatNote);
  }
}

/// Macs that one sentence is about.
struct Group {
  std::string names;
  std::string_view firstTag;

  void take(const TeamworkMac& mac, std::string_view name) {
    if (names.empty()) {
      firstTag = mac.tag;
    } else {
      names += ", ";
    }
    names += name;
  }
  texts::Devices inWords() const { return {.names = names, .firstTag = firstTag}; }
};

std::string macName(const TeamworkMac& mac) { return text::cat(mac.name, " (@", mac.tag, ")"); }

std::string macNameWithLead(const TeamworkMac& mac, const TeamworkLead& lead) {
  std::string name = text::cat(mac.name, " (@", mac.tag, ", lead \"", lead.name, "\"");
  if (lead.runsWithoutApprovals) text::append(name, text::cat(", ", texts::runsWithoutApproval));
  return name + ")";
}

/// The Macs by what can be asked of them.
struct Groups {
  Group takingWork;
  Group paused;
  Group notTakingWork;
  Group unreachable;
  Group addressable;
};

Groups grouped(std::span<const TeamworkMac> macs) {
  Groups groups;
  for (const TeamworkMac& mac : macs) {
    const std::string name = macName(mac);
    if (!mac.awake) {
      groups.unreachable.take(mac, name);
    } else if (!mac.lead) {
      groups.notTakingWork.take(mac, name);
    } else if (mac.lead->paused) {
      groups.paused.take(mac, name);
    } else {
      groups.takingWork.take(mac, macNameWithLead(mac, *mac.lead));
    }
    if (mac.addressable) groups.addressable.take(mac, name);
  }
  return groups;
}

}  // namespace

void addAgent(json::Object& out, const TeamworkAgent& agent) {
  out.add("id", agent.fingerprint);
  addLiveness(out, agent);
  out.addIf("isSelf", agent.isSelf);
  out.addText("handle", agent.handle).addText("name", agent.name).addText("status", agent.status);
  out.addText("role", agent.role);
  if (agent.authority != plainAuthority) out.add("authority", agent.authority);
  out.addIf("canVerify", agent.canVerify);
  out.addIf("idle", agent.idle).addIf("stoodDown", agent.stoodDown);
  if (agent.activeClaims >= 1) out.add("busy", agent.activeClaims);
  out.addText("device", agent.device).addText("roleNote", agent.roleNote);
}

std::optional<std::string> openPanesParagraph(std::span<const TeamworkPane> panes) {
  if (panes.empty()) return std::nullopt;
  const std::string handles = text::join(panes, ", ", &TeamworkPane::handle);
  return texts::alsoOpenHere(handles, panes.size() == 1 ? texts::onePane : texts::severalPanes);
}

std::optional<std::string> otherDevicesParagraph(std::span<const TeamworkMac> macs) {
  if (macs.empty()) return std::nullopt;
  const Groups groups = grouped(macs);
  std::vector<std::string> sentences{std::string(texts::otherDevices)};
  if (!groups.takingWork.names.empty())
    sentences.push_back(texts::devicesTakingWork(groups.takingWork.inWords()));
  if (!groups.paused.names.empty()) sentences.push_back(texts::devicesPaused(groups.paused.names));
  if (!groups.notTakingWork.names.empty())
    sentences.push_back(texts::devicesNotTakingWork(groups.notTakingWork.names));
  if (!groups.unreachable.names.empty())
    sentences.push_back(texts::devicesUnreachable(groups.unreachable.names));
  if (!groups.addressable.names.empty())
    sentences.push_back(texts::devicesAddressable(groups.addressable.inWords()));
  return text::join(sentences, " ");
}

std::string commandLineNote(bool shortForm) {
  return text::cat(texts::commandLineNote, shortForm ? "" : texts::commandLineWaits);
}

}  // namespace quillpost
