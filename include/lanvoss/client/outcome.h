/// @file
/// What becomes of a request to a lanvoss::Client.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace lanvoss {

/// Why there is no link.
enum class Reason {
  kNone,           ///< there is one
  kNotFound,       ///< no search saw the device
  kPairingFailed,  ///< the platform refused; `words` has its status
  kOpenFailed,     ///< the device was found, but the platform opened no link
  kNoAddress,      ///< the link came up without a remote address
  kGivenUp,        ///< by the host, or because the platform reported the end of an older link
  kTimedOut,       ///< the time of the request was over; `step` says how far it was
  kPlatformError,  ///< `words` has the platform's own
  kBusy,           ///< an earlier operation had not ended when the time of this one was over
  kDisconnected,   ///< the platform reported the end of the link
  kSilent,         ///< the link is up for the platform, but the device does not answer
  kNotClosed,      ///< the platform did not close the link
};

/// The steps of a request.
enum class Step { kSearch, kPairing, kOpening, kDone };

/// A link to a device. Texts are as in `LanvossInterface`.
struct Link {
  std::string name;    ///< of the device
  std::string local;   ///< address; may be empty
  std::string remote;  ///< address; never empty

  /// Whether all three are equal.
  friend bool operator==(const Link& a, const Link& b) {
    return a.name == b.name && a.local == b.local && a.remote == b.remote;
  }
  /// The opposite.
  friend bool operator!=(const Link& a, const Link& b) { return !(a == b); }
};

/// How long each step took. A step that was not begun or not ended has no time.
struct StepTimes {
  std::optional<std::chrono::milliseconds> search;   ///< until the device was found
  std::optional<std::chrono::milliseconds> pairing;  ///< none if it was paired already
  std::optional<std::chrono::milliseconds> opening;  ///< of the open requests
  std::chrono::milliseconds total{0};                ///< of the whole request, with its waits
};

/// The outcome of an operation.
struct Outcome {
  Reason reason = Reason::kNone;     ///< kNone: it has succeeded
  std::optional<Link> link;          ///< of a request that gave one
  std::string words;                 ///< the platform's status or error, if it is the reason
  Step step = Step::kSearch;         ///< how far a request was
  StepTimes times;                   ///< how long it took
  std::vector<std::string> inRange;  ///< the names that were reported meanwhile

  /// Whether it has succeeded.
  explicit operator bool() const { return reason == Reason::kNone; }
};

/// A short name of the reason for logs and JSON, such as "not-found"; "none" for kNone.
inline const char* NameOf(Reason reason) {
  switch (reason) {
    case Reason::kNone:
      return "none";
    case Reason::kNotFound:
      return "not-found";
    case Reason::kPairingFailed:
      return "pairing-failed";
    case Reason::kOpenFailed:
      return "open-failed";
    case Reason::kNoAddress:
      return "no-address";
    case Reason::kGivenUp:
      return "given-up";
    case Reason::kTimedOut:
      return "timed-out";
    case Reason::kPlatformError:
      return "platform-error";
    case Reason::kBusy:
      return "busy";
    case Reason::kDisconnected:
      return "disconnected";
    case Reason::kSilent:
      return "silent";
    case Reason::kNotClosed:
      return "not-closed";
  }
  return "";
}

/// The paragraph of the documents that helps, relative to their folder; "" for kNone.
inline const char* HelpPage(Reason reason) {
  switch (reason) {
    case Reason::kNone:
      return "";
    case Reason::kNotFound:
      return "troubleshooting.md#the-device-is-not-found";
    case Reason::kPairingFailed:
      return "troubleshooting.md#found-but-it-will-not-pair";
    case Reason::kOpenFailed:
    case Reason::kNoAddress:
    case Reason::kTimedOut:
      return "troubleshooting.md#paired-but-there-is-no-address";
    case Reason::kGivenUp:
    case Reason::kPlatformError:
    case Reason::kDisconnected:
    case Reason::kNotClosed:
      return "troubleshooting.md#it-works-once-and-not-twice";
    case Reason::kBusy:
      return "troubleshooting.md#the-watcher-goes-quiet";
    case Reason::kSilent:
      return "troubleshooting.md#the-link-is-up-but-no-echo-comes-back";
  }
  return "";
}

/// What the step is called: "search", "pairing", "opening", "link".
inline const char* NameOf(Step step) {
  switch (step) {
    case Step::kSearch:
      return "search";
    case Step::kPairing:
      return "pairing";
    case Step::kOpening:
      return "opening";
    case Step::kDone:
      return "link";
  }
  return "";
}

/// The reason as a sentence about the device, for people: "Cam-7F21 was not found".
inline std::string Explain(const Outcome& outcome, const std::string& name) {
  switch (outcome.reason) {
    case Reason::kNone:
      return "the link to " + name + " is up";
    case Reason::kNotFound:
      return name + " was not found";
    case Reason::kPairingFailed:
      return name + " was not paired: the platform says " + outcome.words;
    case Reason::kOpenFailed:
      return name + " was found, but no link to it came up";
    case Reason::kNoAddress:
      return "the link to " + name + " has no remote address";
    case Reason::kGivenUp:
      return "the request for " + name + " was given up";
    case Reason::kTimedOut:
      return "no link to " + name + ": the time was over during the " + NameOf(outcome.step);
    case Reason::kPlatformError:
      return "no link to " + name + ": the platform says " + outcome.words;
    case Reason::kBusy:
      return "no link to " + name + ": an earlier operation has not ended";
    case Reason::kDisconnected:
      return "the link to " + name + " went down";
    case Reason::kSilent:
      return name + " does not answer";
    case Reason::kNotClosed:
      return "the platform did not close the link to " + name;
  }
  return {};
}

}  // namespace lanvoss
