#include "host/core/job.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <set>
#include <strings.h>

#include "host/core/option_guard.h"
#include "host/core/utf8.h"
#include "texts/texts.h"

namespace fax::host {

namespace {

constexpr std::size_t kPiece = 65536;
constexpr std::size_t kLongestTitle = 255;  // bytes; the longest job name that IPP allows
constexpr int kMostCopies = 9999;
constexpr int kWithdrawSeconds = 5;  // the user waits for it, and nothing is lost where it fails
constexpr char const *kTryAgain = mark("Try again; if it happens again, see the error log of the print service.");

using Clock = std::chrono::steady_clock;

Failure not_sent(std::string what, std::string advice) {
  return {ExitCode::submission, std::move(what), std::move(advice)};
}

Failure cancelled() { return {ExitCode::cancelled, tr("The job was cancelled."), ""}; }

// What the print service's refusal means for the user. message is CUPS's own sentence.
Failure refusal(ipp_status_t status, std::string const &message, JobRequest const &request) {
  std::string const &queue = request.queue;
  switch (status) {
    case IPP_STATUS_ERROR_NOT_FOUND:
      return no_such_queue(queue);
    case IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS:
      return not_sent(tr("The queue \"{0}\" is not accepting jobs.", queue),
                      tr("Ask its administrator, or run: {0}.", "cupsaccept " + queue));
    case IPP_STATUS_ERROR_DOCUMENT_FORMAT_NOT_SUPPORTED:
    case IPP_STATUS_ERROR_DOCUMENT_FORMAT_ERROR:
      return not_sent(tr("The queue \"{0}\" cannot take a document of this kind: {1}.", queue, message),
                      tr("Save the document as PDF and send that."));
    case IPP_STATUS_ERROR_NOT_AUTHORIZED:
    case IPP_STATUS_ERROR_NOT_AUTHENTICATED:
    case IPP_STATUS_ERROR_FORBIDDEN:
    case IPP_STATUS_ERROR_CUPS_AUTHENTICATION_CANCELED:
      return not_sent(tr("You may not print on the queue \"{0}\": {1}.", queue, message), tr("Ask its administrator."));
    case IPP_STATUS_ERROR_REQUEST_ENTITY:
      return not_sent(tr("The print service has no room for the document, or does not take one of this size."),
                      tr("Free space on its disk, or send a smaller document."));
    case IPP_STATUS_ERROR_SERVICE_UNAVAILABLE:
    case IPP_STATUS_ERROR_INTERNAL:
      return not_sent(tr("The print service stopped answering: {0}.", message), tr(kTryAgain));
    default:
      return not_sent(tr("The print service refused the job: {0}.", message), tr(kTryAgain));
  }
}

// As CUPS compares them: of two keys that differ in letter case only, the filter sees the value of the later one.
bool is_same_key(std::string const &one, std::string const &other) {
  return strcasecmp(one.c_str(), other.c_str()) == 0;
}

ipp_status_t meaning_of(http_status_t status) {
  switch (status) {
    case HTTP_STATUS_UNAUTHORIZED:
    case HTTP_STATUS_FORBIDDEN:
      return IPP_STATUS_ERROR_NOT_AUTHORIZED;
    case HTTP_STATUS_REQUEST_TOO_LARGE:
      return IPP_STATUS_ERROR_REQUEST_ENTITY;
    case HTTP_STATUS_NOT_FOUND:
      return IPP_STATUS_ERROR_NOT_FOUND;
    default:
      return IPP_STATUS_ERROR_SERVICE_UNAVAILABLE;
  }
}

// One submission over its own connection. Keeps the user's window alive while the service is slow.
class Submission {
public:
  Submission(Server const &server, JobRequest const &request, Progress const &progress)
      : server_(server), request_(request), progress_(progress) {}

  Result<int> run() {
    auto connection = connect(server_);
    if (!connection) return connection.failure();
    connection_ = std::move(connection.value());
    httpSetTimeout(connection_.get(), 1.0, on_wait, this);
    if (!report()) return cancelled();
    if (auto failure = create()) return *failure;
    if (auto failure = send_document()) return withdraw(std::move(*failure));
    return job_;
  }

private:
  // Tells how far we are; false when the user wants no more.
  bool report() {
    if (progress_ && !progress_(done_, request_.document.size())) stopped_ = true;
    return !stopped_;
  }

  void restart_clock() { since_ = Clock::now(); }

  bool late() const { return Clock::now() - since_ >= std::chrono::seconds(server_.timeout_seconds); }

  // libcups asks once a second whether to go on waiting.
  static int on_wait(http_t *, void *self) {
    auto &submission = *static_cast<Submission *>(self);
    return submission.report() && !submission.late() ? 1 : 0;
  }

  std::optional<Failure> create() {
    std::array<char, HTTP_MAX_URI> uri;
    httpAssembleURIf(HTTP_URI_CODING_ALL, uri.data(), static_cast<int>(uri.size()), "ipp", nullptr, "localhost",
                     ippPort(), "/printers/%s", request_.queue.c_str());
    std::string const &title = request_.title.empty() ? request_.document.title() : request_.title;
    ipp_t *const create = ippNewRequest(IPP_OP_CREATE_JOB);
    ippAddString(create, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.data());
    ippAddString(create, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    ippAddString(create, IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", nullptr, title.c_str());
    add_options(create);

    restart_clock();
    ipp_t *const answer = cupsDoRequest(connection_.get(), create, ("/printers/" + request_.queue).c_str());
    ipp_attribute_t *const number = ippFindAttribute(answer, "job-id", IPP_TAG_INTEGER);
    job_ = number != nullptr ? ippGetInteger(number, 0) : 0;
    ippDelete(answer);
    if (job_ > 0 && cupsLastError() <= IPP_STATUS_OK_EVENTS_COMPLETE) return std::nullopt;
    if (stopped_) return cancelled();
    return refusal(cupsLastError(), last_error(), request_);
  }

  // The options and choices of a printer are encoded by their IPP types. Print settings are text whatever they look
  // like: libcups would turn a recipient called "True" into a boolean, and the filter would read "true".
  void add_options(ipp_t *create) const {
    std::set<std::string> text_keys;
    for (auto const &setting : request_.settings) text_keys.insert(setting.key);
    int count = 0;
    cups_option_t *typed = nullptr;
    std::vector<Setting> const all = job_options(request_);
    for (auto const &[key, value] : all)
      if (!text_keys.contains(key)) count = cupsAddOption(key.c_str(), value.c_str(), count, &typed);
    cupsEncodeOptions2(create, count, typed, IPP_TAG_OPERATION);
    cupsEncodeOptions2(create, count, typed, IPP_TAG_JOB);
    cupsFreeOptions(count, typed);
    if (request_.copies != 1) ippAddInteger(create, IPP_TAG_JOB, IPP_TAG_INTEGER, "copies", request_.copies);
    for (auto const &[key, value] : all)
      if (text_keys.contains(key))
        ippAddString(create, IPP_TAG_JOB, IPP_TAG_NAME, key.c_str(), nullptr, value.c_str());
  }

  std::optional<Failure> send_document() {
    Document const &document = request_.document;
    restart_clock();
    http_status_t status = cupsStartDocument(connection_.get(), request_.queue.c_str(), job_, document.title().c_str(),
                                             document.format().c_str(), 1);
    std::vector<char> piece(kPiece);
    while (status == HTTP_STATUS_CONTINUE && done_ < document.size()) {
      std::size_t const wanted = std::min<std::uint64_t>(piece.size(), document.size() - done_);
      auto const got = document.read(done_, {piece.data(), wanted});
      if (!got) return got.failure();
      if (got.value() == 0)
        return Failure{ExitCode::file, "The document \"" + document.path() + "\" became shorter while it was sent.",
                       "Wait until the program that writes it is done, then print it again."};
      restart_clock();
      status = cupsWriteRequestData(connection_.get(), piece.data(), got.value());
      if (stopped_) return cancelled();
      if (status != HTTP_STATUS_CONTINUE) break;
      done_ += got.value();
      if (!report()) return cancelled();
    }
    if (status != HTTP_STATUS_CONTINUE) return broken_off(status);
    restart_clock();
    // Not by cupsFinishDocument(): where no answer comes that gives the last one, which was a good one.
    ipp_t *const answer = cupsGetResponse(connection_.get(), ("/printers/" + request_.queue).c_str());
    ipp_status_t const finished = answer ? ippGetStatusCode(answer) : cupsLastError();
    ippDelete(answer);
    if (stopped_) return cancelled();
    if (!answer && finished <= IPP_STATUS_OK_EVENTS_COMPLETE) return broken_off(HTTP_STATUS_ERROR);
    if (finished > IPP_STATUS_OK_EVENTS_COMPLETE) return refusal(finished, last_error(), request_);
    return std::nullopt;
  }

  // Why the document could not be sent to its end. A service that has enough says so and closes the connection; its
  // answer then waits behind the failed write.
  Failure broken_off(http_status_t status) {
    if (status == HTTP_STATUS_ERROR && !late() && !stopped_)
      do status = httpUpdate(connection_.get());
      while (status == HTTP_STATUS_CONTINUE && !late());
    if (stopped_) return cancelled();
    if (status >= HTTP_STATUS_BAD_REQUEST) return refusal(meaning_of(status), httpStatus(status), request_);
    auto const all = request_.document.size();
    if (late())
      return not_sent(tr("The print service took no more data for {0} seconds, after {1} of {2} bytes.",
                         server_.timeout_seconds, done_, all),
                      tr(kTryAgain));
    return not_sent(tr("The connection to the print service broke after {0} of {1} bytes.", done_, all), tr(kTryAgain));
  }

  // Takes the half-made job out of the queue. The first connection may be in the middle of a document, so it is closed
  // and another one used.
  Failure withdraw(Failure failure) {
    connection_.reset();
    Server quick = server_;
    quick.timeout_seconds = std::min(quick.timeout_seconds, kWithdrawSeconds);
    auto connection = connect(quick);
    ipp_status_t status = IPP_STATUS_ERROR_SERVICE_UNAVAILABLE;
    if (connection) {
      Deadline const deadline(connection.value().get(), quick.timeout_seconds);
      status = cupsCancelJob2(connection.value().get(), request_.queue.c_str(), job_, 1);
    }
    bool const gone = status <= IPP_STATUS_OK_EVENTS_COMPLETE || status == IPP_STATUS_ERROR_NOT_FOUND ||
                      status == IPP_STATUS_ERROR_NOT_POSSIBLE;  // it has ended by itself
    if (!gone)
      failure.advice += (failure.advice.empty() ? "" : " ") +
                        tr("Job {0} may still be in the queue without its document; remove it with: {1}.",
                           request_.queue + "-" + std::to_string(job_), "cancel " + std::to_string(job_));
    return failure;
  }

  Server const &server_;
  JobRequest const &request_;
  Progress const &progress_;
  Connection connection_;
  int job_ = 0;
  std::uint64_t done_ = 0;
  bool stopped_ = false;
  Clock::time_point since_ = Clock::now();
};

}  // namespace

std::vector<Setting> job_options(JobRequest const &request) {
  std::vector<Setting> joined;
  for (auto const *list : {&request.options, &request.choices, &request.settings}) {
    for (auto const &setting : *list) {
      Setting const sent{setting.key, guarded_value(setting.value)};
      auto const found = std::find_if(joined.begin(), joined.end(),
                                      [&](Setting const &earlier) { return is_same_key(earlier.key, sent.key); });
      if (found == joined.end())
        joined.push_back(sent);
      else
        *found = sent;
    }
  }
  return joined;
}

std::optional<Failure> check_request(JobRequest const &request) {
  if (request.copies < 1 || request.copies > kMostCopies)
    return not_sent(tr("The number of copies is not between {0} and {1}.", 1, kMostCopies), tr("Choose another number."));
  if (!is_utf8(request.title) || request.title.size() > kLongestTitle || request.title.find('\0') != std::string::npos)
    return not_sent(tr("The title of the job is no text of at most {0} bytes.", kLongestTitle),
                    tr("Choose a shorter title."));
  std::vector<Setting> options = job_options(request);
  for (auto const &[key, value] : options) {
    if (!is_safe_key(key)) return not_sent(tr("The job cannot carry the setting \"{0}\".", key), tr("Leave it out."));
    if (!is_utf8(value) || value.find('\0') != std::string::npos)
      return not_sent(tr("The value of the setting \"{0}\" is no valid text.", key), tr("Type it again."));
    if (value.size() > kLargestValue)
      return not_sent(tr("The value of the setting \"{0}\" is too long: {1} bytes, where {2} are possible.", key,
                         value.size(), kLargestValue),
                      tr("Make it shorter."));
  }
  for (auto const &setting : request.queue_defaults)
    if (std::none_of(options.begin(), options.end(),
                     [&](Setting const &sent) { return is_same_key(sent.key, setting.key); }))
      options.push_back(setting);
  std::size_t const total = total_option_bytes(options);
  if (total > kLargestOptions)
    return not_sent(tr("The settings of the job are too long together: {0} bytes, where {1} are possible.", total,
                       kLargestOptions),
                    tr("Send to fewer destinations at a time, or shorten their names."));
  return std::nullopt;
}

Result<int> submit(Server const &server, JobRequest const &request, Progress const &progress) {
  if (auto failure = check_request(request)) return *failure;
  return Submission(server, request, progress).run();
}

}  // namespace fax::host
