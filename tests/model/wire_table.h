#pragma once

// Every key that crosses the app's socket, written down a second time and by hand: the field tables
// are held against this. A line is a key, the type of its value, and what its absence means.

#include <string_view>

namespace quillpost {

inline constexpr std::string_view wireTable = R"(
TeamworkRequest
protocolVersion: integer, required
token: string, required
sessionID: string, required
method: string, required
name: string, optional
role: string, optional
approve: boolean, optional
reviewOfFingerprint: string, optional
reviewOfRole: string, optional
priority: integer, optional
taskType: string, optional
resources: [string], optional
assignedRole: string, optional
routedToFingerprint: string, optional
to: string, optional
agent: string, optional
command: string, optional
explanation: string, optional
status: string, optional
taskID: string, optional
title: string, optional
body: string, optional
note: string, optional
blocked: boolean, optional
blockerQuestion: string, optional
parkReason: string, optional
summary: string, optional
waitsOn: [string], optional
taskIDs: [string], optional
sinceRev: integer, optional
holdMs: integer, optional
wakeOnStateChanges: boolean, optional
releaseReason: string, optional
waiting: boolean, optional
standDown: boolean, optional
tags: [string], optional
editLast: boolean, optional
acknowledgeOpenTasks: boolean, optional
discussionID: string, optional

TeamworkResponse
kind: TeamworkResponse.Kind, required
agent: TeamworkAgent, optional
agents: [TeamworkAgent], optional
tasks: [TeamworkTask], optional
task: TeamworkTask, optional
plan: TeamworkPlan, optional
message: string, optional
changes: TeamworkChangeFeed, optional
discussion: TeamworkDiscussion, optional
obligations: TeamworkObligations, optional
audience: TeamworkAudience, optional
rev: integer, optional
threadTag: string, optional
wakePending: boolean, optional
notice: string, optional
messages: [TeamworkSquadMessage], optional
squad: TeamworkSquadState, optional
panes: [TeamworkPane], optional
macs: [TeamworkMac], optional
runningHelpers: [TeamworkHelperRun], optional

TeamworkTask
id: string, required
title: string, required
body: string, required
state: string, required
ownerFingerprint: string, optional
claimLeaseSecondsRemaining: integer, optional
log: [string], required
blocked: boolean, default false
blockerQuestion: string, optional
blockerAnswer: string, optional
blockerEscalated: boolean, default false
priority: integer, default 0
type: string, optional
thrashing: boolean, default false
claimAttempts: integer, default 0
resources: [string], required
reviewState: string, optional
reviewRequestedFromFingerprint: string, optional
reviewNote: string, optional
reviewByFingerprint: string, optional
parkedReason: string, optional
assignedRole: string, optional
routedToFingerprint: string, optional
routedToLive: boolean, default false
reportsToHandle: string, optional
waitsOn: [string], default []
ready: boolean, default true
unresolvedWaitsOn: [string], optional
pendingReleaseReason: string, optional
mentionsYou: boolean, default false
openDiscussions: integer, default 0
escalatedDiscussions: integer, default 0
discussions: [TeamworkDiscussion], default []
pendingDelete: boolean, default false
pendingDeleteReason: string, optional
watchers: [TeamworkTaskWatcher], default []

TeamworkAgent
id: string, required
fingerprint: string, required
name: string, required
status: string, required
leaseSecondsRemaining: integer, required
isSelf: boolean, required
idle: boolean, default false
role: string, optional
authority: string, default "contributor"
canVerify: boolean, required
activeClaims: integer, required
device: string, optional
seatPresence: string, optional
roleNote: string, optional
handle: string, default ""
quietForSeconds: integer, optional
stoodDown: boolean, default false

TeamworkDiscussion
id: string, required
taskID: string, optional
question: string, required
state: string, required
openedBy: string, required
addressedTo: [string], required
volleys: [TeamworkDiscussion.Volley], required
resolution: string, optional
resolvedBy: string, optional
owingParties: [string], required
volleysSinceHuman: integer, required
escalated: boolean, required
yourTurn: boolean, default false

TeamworkDiscussion.Volley
author: string, required
body: string, required
atMs: integer, required

TeamworkPlan
threadName: string, required
goal: string, required
charter: string, default ""
goalLocked: boolean, required
dispatched: boolean, required
shared: boolean, default false
otherLocalAgents: integer, default 0
otherDevices: integer, default 0
goalComplete: boolean, default false
pendingGoalComplete: boolean, default false
discussions: [TeamworkDiscussion], default []

TeamworkChangeFeed
rev: integer, required
changed: boolean, required
goal: string, required
goalComplete: boolean, required
pendingGoalComplete: boolean, required
changeKinds: [string], required
tasks: [TeamworkTask], required
changes: [TeamworkChange], default []
wakeReasons: [TeamworkWakeReason], default []
messages: [TeamworkSquadMessage], default []

TeamworkChange
kind: string, required
taskID: string, optional

TeamworkWakeReason
kind: string, required
taskID: string, optional
summary: string, required
cause: string, optional

TeamworkTaskWatcher
kind: string, required
fingerprint: string, optional
name: string, optional
auto: boolean, required

TeamworkSquadMessage
id: string, required
from: string, required
fromName: string, required
text: string, required
ageSeconds: integer, required

TeamworkSquadState
mode: string, required
canAddress: boolean, required
canSpawn: boolean, required
helpers: [TeamworkHelper], optional
lead: TeamworkLead, optional
helperLimit: integer, optional
helpersRunning: integer, optional

TeamworkLead
name: string, required
runsWithoutApprovals: boolean, required
paused: boolean, required

TeamworkHelper
name: string, required
explanation: string, required
runsWithoutApprovals: boolean, required
quillpostTools: boolean, required

TeamworkHelperRun
handle: string, required
helper: string, required
state: string, required
askedBy: string, required
runningForSeconds: integer, optional
detail: string, optional
yours: boolean, required
kind: string, optional

TeamworkPane
handle: string, required

TeamworkMac
tag: string, required
name: string, required
addressable: boolean, required
awake: boolean, required
lead: TeamworkLead, optional

TeamworkObligations
oweReply: [TeamworkObligations.DebateRef], default []
awaitingReply: [TeamworkObligations.DebateRef], default []
yourBlockersOpen: [string], default []
mentionsToAnswer: [string], default []
tasksHeld: [string], default []
staleSummaries: [TeamworkObligations.HeldRef], default []
idleHeld: [TeamworkObligations.HeldRef], default []
releaseAsks: [TeamworkObligations.ReleaseAskRef], default []
undelivered: [TeamworkObligations.UndeliveredRef], default []
clear: boolean, default true

TeamworkObligations.DebateRef
discussionID: string, required
taskID: string, optional
question: string, required
counterpart: string, required

TeamworkObligations.HeldRef
taskID: string, required
summaryBehindBy: integer, required
wroteNothingSinceClaim: boolean, required

TeamworkObligations.ReleaseAskRef
taskID: string, required
requester: string, required
reason: string, required

TeamworkObligations.UndeliveredRef
verb: string, required
taskID: string, optional
reason: string, required
refused: boolean, required

TeamworkAudience
shared: boolean, default false
otherDevices: integer, default 0
otherPeople: integer, default 0
otherLocalAgents: integer, default 0

TeamworkHumanAsk.Payload
a: string, optional
c: string, optional
k: string, required
o: [string], optional
s: string, optional
)";

}  // namespace quillpost
