// What a client asks of the library, in terms of the core: a link, a search, a check.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "lanvoss/client/core.h"

namespace lanvoss {

/// How a link is requested.
struct ConnectOptions {
  /// How long it may take, with the wait for earlier operations. Then the outcome is kTimedOut, at
  /// once, although the platform may not have ended yet. The gap comes on top of it.
  std::chrono::milliseconds timeout{std::chrono::minutes(2)};
  /// The least time since the last disconnect; some devices need it.
  std::chrono::milliseconds gap{0};
  /// Connect to the id in the cache, without a search; the search follows only if that fails.
  bool direct = false;
};

/// What ends a search for a device.
enum class SearchUntil {
  kFound,
  kGone,  ///< it was found, and a later pass of the watcher no longer saw it
};

/// What a check of the link found.
struct CheckResult {
  std::optional<int> replies;  ///< of four probes; none: there was no link to probe
  bool isRecovery = false;     ///< nobody answered, so the device was unpaired and paired again
  Outcome outcome;             ///< its link: the one that the recovery has opened
};

/// What one call of the library's object gave.
struct CallResult {
  std::string text;            ///< set by the function of the host
  std::int32_t number = 0;     ///< the same
  std::optional<int> replies;  ///< of the latest probe
  bool isRecovery = false;     ///< nobody answered it, so a recovery was begun
  /// As of a request that gave no link: a reason without an error says nothing about other calls.
  Outcome outcome;
};

namespace detail {

// The times a request is made at most.
inline constexpr int kAsks = 2;

// The times it is made again because the attempt of an earlier request has ended its wait.
inline constexpr int kMaxDisturbances = 5;

inline constexpr std::int32_t kLinkClosed = 1;  // of DisConnect

// A name goes into a request's text, where a line feed separates the parts.
inline void CheckName(const std::string& name) {
  if (name.empty() || name.find('\n') != std::string::npos) {
    throw std::invalid_argument("lanvoss: the name of a device has one line, and is not empty");
  }
}

inline std::optional<Link> LinkOf(const std::string& name, const std::string& addresses) {
  const auto comma = addresses.find(',');
  if (comma == std::string::npos) {
    return std::nullopt;
  }
  return Link{name, addresses.substr(0, comma), addresses.substr(comma + 1)};
}

// The outcome of an operation that has given no link.
inline Outcome OutcomeOf(const Finished& finished) {
  Outcome outcome;
  const Record& record = finished.record;
  switch (finished.ending) {
    case Ending::kNotBegun:
      outcome.reason = Reason::kBusy;
      break;
    case Ending::kCancelled:
      outcome.reason = Reason::kGivenUp;
      break;
    case Ending::kOverdue:
      outcome.reason = Reason::kTimedOut;
      break;
    case Ending::kReturned:
      outcome.reason = finished.returned.error ? Reason::kPlatformError : ReasonOf(record);
      break;
  }
  outcome.words =
      finished.returned.error ? *finished.returned.error : WordsOf(record, outcome.reason);
  outcome.step = record.step;
  outcome.times.search = Between(record.begun, record.found);
  outcome.times.pairing = Between(record.pairingBegun, record.pairingEnded);
  outcome.times.opening = Between(record.openingBegun, record.linkUp);
  outcome.inRange = record.names;
  return outcome;
}

inline Outcome LinkUp(Outcome outcome, const std::optional<Link>& link) {
  outcome.reason = Reason::kNone;
  outcome.words.clear();
  outcome.step = Step::kDone;
  outcome.link = link;
  return outcome;
}

// Without an overflow, whatever the host has asked for.
inline Milliseconds TimeoutOf(const ConnectOptions& options) {
  return std::min<Milliseconds>(options.timeout, Monitor::kLongestWait) +
         std::min<Milliseconds>(options.gap, Monitor::kLongestWait);
}

inline bool HasSucceeded(const Finished& finished) {
  return finished.ending == Ending::kReturned && !finished.returned.error;
}

inline Outcome Timed(Outcome outcome, Core& core, const Request& request) {
  outcome.times.total = core.State().Now() - request.begun;
  return outcome;
}

inline Outcome CloseLink(Core& core, const std::shared_ptr<Request>& request) {
  const Finished finished = core.Run(request, [](LanvossInterface& object, Returned& returned) {
    returned.number = object.DisConnect("");
  });
  Outcome outcome = OutcomeOf(finished);
  if (HasSucceeded(finished)) {
    outcome.reason = finished.returned.number == kLinkClosed ? Reason::kNone : Reason::kNotClosed;
  }
  return Timed(std::move(outcome), core, *request);
}

inline std::string RequestText(const std::string& name, const ConnectOptions& options, int ask) {
  if (ask == 1 && options.gap.count() > 0) {
    return std::to_string(options.gap.count()) + "\n" + name;
  }
  // After a failure only a search brings a new report of the device.
  return ask == 1 && options.direct ? "\n" + name : name;
}

// One request to the library. Its own end of an older link would make it give the new one up, so
// that link is closed before.
inline Finished Ask(Core& core, const std::string& name, const std::string& text,
                    const std::shared_ptr<Request>& request) {
  return core.Run(request, [&core, name, text](LanvossInterface& object, Returned& returned) {
    if (const auto held = core.HeldBy(); held && *held != name) {
      object.DisConnect("");
    }
    returned.text = object.GetDeviceIp(text);
  });
}

// The request is made again at once if that can help.
inline Outcome ConnectDevice(Core& core, const std::string& name, const ConnectOptions& options,
                             const std::shared_ptr<Request>& request) {
  Outcome outcome;
  int disturbances = 0;
  for (int ask = 1; ask <= kAsks; ++ask) {
    // The library itself does not know that a link that was opened directly is the device's.
    if (const auto held = core.CurrentLink(); options.direct && held && held->name == name) {
      outcome = LinkUp({}, held);
      break;
    }
    const Finished finished = Ask(core, name, RequestText(name, options, ask), request);
    outcome = OutcomeOf(finished);
    const std::optional<Link> link = LinkOf(name, finished.returned.text);
    if (link && finished.link == link) {
      outcome = LinkUp(std::move(outcome), link);
      break;
    }
    const bool isDisturbed =
        HasSucceeded(finished) && finished.record.isDisturbed && ++disturbances <= kMaxDisturbances;
    if (isDisturbed) {
      --ask;
    }
    if (link || finished.record.lacksAddress) {
      // The link is another device's, or has gone down again, or is of no use.
      outcome.reason = link ? Reason::kGivenUp : Reason::kNoAddress;
      CloseLink(core, request);
    } else if (!isDisturbed &&
               (finished.ending != Ending::kReturned || !MaySucceedNow(finished.record))) {
      break;
    }
  }
  return Timed(std::move(outcome), core, *request);
}

// A pass of the library's watcher, until it is over. It gives up when others wait, if it `yields`.
inline Finished Search(Core& core, const std::string& watchRequest, bool yields,
                       const std::shared_ptr<Request>& request) {
  return core.Run(request,
                  [&core, watchRequest, yields](LanvossInterface& object, Returned& returned) {
                    if (yields && core.CurrentLink()) {
                      return;  // it came up while this waited for its turn
                    }
                    core.WaitForPassEnd();
                    core.ForgetLink();  // as the library does
                    returned.number = object.StartWatch(watchRequest);
                    if (returned.number == 0 && !core.WaitForWatch(yields)) {
                      object.AbortConnect("");  // or the watch would begin its next pass
                      object.StopWatch();
                    }
                  });
}

inline Outcome SearchDevice(Core& core, const std::string& name, SearchUntil until,
                            const std::shared_ptr<Request>& request) {
  const std::string watchRequest = until == SearchUntil::kGone ? "\n" + name : name;
  const Finished finished = Search(core, watchRequest, false, request);
  Outcome outcome = OutcomeOf(finished);
  if (HasSucceeded(finished) &&
      (name.empty() ? finished.record.watchError.empty() : finished.record.found.has_value())) {
    outcome.reason = Reason::kNone;
  }
  return Timed(std::move(outcome), core, *request);
}

// Unpairs a device that the watcher reports; looks for it if it has not done so yet.
inline Outcome UnpairDevice(Core& core, const std::string& name,
                            const std::shared_ptr<Request>& request) {
  const auto unpair = [&] {
    return core.Run(request, [name](LanvossInterface& object, Returned& returned) {
      returned.number = object.Unpair(name);
    });
  };
  Finished finished = unpair();
  if (finished.record.isUnknownDevice) {
    finished = Search(core, name, false, request);
    if (finished.ending != Ending::kReturned || !finished.record.found) {
      return Timed(OutcomeOf(finished), core, *request);
    }
    finished = unpair();
  }
  Outcome outcome = OutcomeOf(finished);
  if (HasSucceeded(finished) && !finished.record.isUnknownDevice) {
    outcome.reason = Reason::kNone;
  }
  return Timed(std::move(outcome), core, *request);
}

inline CheckResult CheckLink(Core& core, const std::shared_ptr<Request>& request) {
  const Finished finished = core.Run(request, [](LanvossInterface& object, Returned& returned) {
    returned.text = object.PingCheck();
  });
  CheckResult result;
  result.replies = finished.record.replies;
  result.isRecovery = finished.record.isRecovery;
  Outcome outcome = OutcomeOf(finished);
  if (HasSucceeded(finished)) {
    const bool isUp = result.replies.value_or(0) > 0 || !finished.returned.text.empty();
    if (isUp && finished.link) {
      outcome = LinkUp(std::move(outcome), finished.link);
    } else {
      outcome.reason = result.replies == 0 ? Reason::kSilent : Reason::kDisconnected;
    }
  }
  result.outcome = Timed(std::move(outcome), core, *request);
  return result;
}

inline CallResult CallObject(Core& core, std::function<void(LanvossInterface&, CallResult&)> call,
                             const std::shared_ptr<Request>& request) {
  const Finished finished =
      core.Run(request, [call = std::move(call)](LanvossInterface& object, Returned& returned) {
        CallResult given;
        call(object, given);
        returned.text = std::move(given.text);
        returned.number = given.number;
      });
  CallResult given;
  given.text = finished.returned.text;
  given.number = finished.returned.number;
  given.replies = finished.record.replies;
  given.isRecovery = finished.record.isRecovery;
  given.outcome = Timed(OutcomeOf(finished), core, *request);
  return given;
}

}  // namespace detail
}  // namespace lanvoss
