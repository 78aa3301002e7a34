#include "host/core/job_watch.h"

#include <condition_variable>
#include <array>
#include <ctime>
#include <exception>
#include <fcntl.h>
#include <mutex>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "texts/texts.h"

namespace fax::host {

// What the watch and its thread tell each other.
struct WatchBoard {
  explicit WatchBoard(int number) : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    news.number = number;
  }
  ~WatchBoard() { close(descriptor); }
  WatchBoard(WatchBoard const &) = delete;
  WatchBoard &operator=(WatchBoard const &) = delete;

  int const descriptor;
  std::mutex mutex;  // of everything below
  std::condition_variable ordered;
  JobNews news;
  bool cancel_wanted = false;
  bool retry_wanted = false;
  bool left = false;  // nobody wants to know any more
};

namespace {

using Order = JobNews::Order;

struct FreeAnswer {
  void operator()(ipp_t *answer) const { ippDelete(answer); }
};
using Answer = std::unique_ptr<ipp_t, FreeAnswer>;

enum class Reply { done, not_possible, not_allowed, no_answer };

Reply reply_of(ipp_status_t status) {
  switch (status) {
    case IPP_STATUS_ERROR_NOT_POSSIBLE:
    case IPP_STATUS_ERROR_NOT_FOUND:
    case IPP_STATUS_ERROR_GONE:
    case IPP_STATUS_ERROR_OPERATION_NOT_SUPPORTED:
      return Reply::not_possible;
    case IPP_STATUS_ERROR_NOT_AUTHORIZED:
    case IPP_STATUS_ERROR_NOT_AUTHENTICATED:
    case IPP_STATUS_ERROR_FORBIDDEN:
    case IPP_STATUS_ERROR_CUPS_AUTHENTICATION_CANCELED:
      return Reply::not_allowed;
    default:
      return status <= IPP_STATUS_OK_EVENTS_COMPLETE ? Reply::done : Reply::no_answer;
  }
}

// The conversation with the print service about one job: a connection that is kept from question to question.
class JobTalk {
public:
  JobTalk(Server const &server, std::string queue, int patience) : server_(server), queue_(std::move(queue)) {
    server_.timeout_seconds = patience;
  }

  // Answer and status of one question; error() says why there is none.
  std::pair<Answer, ipp_status_t> ask(ipp_t *question, char const *resource) {
    Answer owned(question);
    if (!connection_) {
      auto made = connect(server_);
      if (!made) {
        error_ = made.failure().what;
        return {nullptr, IPP_STATUS_ERROR_SERVICE_UNAVAILABLE};
      }
      connection_ = std::move(made.value());
    }
    Deadline const deadline(connection_.get(), server_.timeout_seconds);
    Answer answer(cupsDoRequest(connection_.get(), owned.release(), resource));
    ipp_status_t const status = cupsLastError();
    if (reply_of(status) == Reply::no_answer) {
      error_ = deadline.over() ? tr("It did not answer within {0} seconds.", server_.timeout_seconds)
                               : tr("The reason: {0}.", last_error());
      connection_.reset();
    } else {
      error_ = last_error() + ".";
      httpSetTimeout(connection_.get(), server_.timeout_seconds, nullptr, nullptr);
    }
    return {std::move(answer), status};
  }

  ipp_t *question(ipp_op_t operation) const {
    std::array<char, HTTP_MAX_URI> uri;
    httpAssembleURIf(HTTP_URI_CODING_ALL, uri.data(), static_cast<int>(uri.size()), "ipp", nullptr, "localhost",
                     ippPort(), "/printers/%s", queue_.c_str());
    ipp_t *const made = ippNewRequest(operation);
    ippAddString(made, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.data());
    return made;
  }

  ipp_t *job_question(ipp_op_t operation, int job) const {
    ipp_t *const made = question(operation);
    ippAddInteger(made, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", job);
    ippAddString(made, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    return made;
  }

  std::string const &error() const { return error_; }

private:
  Server server_;
  std::string queue_;
  Connection connection_;
  std::string error_;
};

// What the thread does.
class Follower {
public:
  Follower(std::shared_ptr<WatchBoard> board, Server const &server, SubmittedJob job, WatchPace pace)
      : board_(std::move(board)),
        server_(server),
        talk_(server, job.request.queue, pace.patience_seconds),
        request_(std::move(job.request)),
        pace_(pace) {
    news_.number = job.number;
    news_.status = job_status({}, std::time(nullptr));
  }

  void run() {
    try {
      publish();
      look();
      while (wait()) {
        obey();
        look();
      }
    } catch (std::exception const &failed) {
      news_.trouble = tr("The job is not followed any more: {0}.", failed.what());
      publish();
    }
  }

private:
  void publish() {
    std::lock_guard const lock(board_->mutex);
    if (news_ == board_->news) return;
    board_->news = news_;
    eventfd_write(board_->descriptor, 1);
  }

  // Until it is time to look again or there is an order. A job that has ended is looked at only while it waits in the
  // queue for somebody to start it again.
  bool wait() {
    std::unique_lock lock(board_->mutex);
    auto const ordered = [&] { return board_->left || board_->cancel_wanted || board_->retry_wanted; };
    if (news_.status.over() && !news_.status.can_cancel)
      board_->ordered.wait(lock, ordered);
    else
      board_->ordered.wait_for(lock, pace_.between, ordered);
    return !board_->left;
  }

  void obey() {
    bool cancel_wanted, retry_wanted;
    {
      std::lock_guard const lock(board_->mutex);
      cancel_wanted = std::exchange(board_->cancel_wanted, false);
      retry_wanted = std::exchange(board_->retry_wanted, false);
    }
    if (cancel_wanted && news_.status.can_cancel) cancel();
    if (retry_wanted && news_.status.can_retry) retry();
  }

  void look() {
    auto const [job, status] = talk_.ask(talk_.job_question(IPP_OP_GET_JOB_ATTRIBUTES, news_.number), "/");
    auto const reply = reply_of(status);
    if (reply == Reply::not_possible) return lose();
    Answer printer;
    if (reply == Reply::done) printer = talk_.ask(talk_.question(IPP_OP_GET_PRINTER_ATTRIBUTES), "/").first;
    if (reply != Reply::done || !printer) {
      news_.trouble = talk_.error();
      return publish();
    }
    news_.trouble.clear();
    take(read_report(job.get(), printer.get()));
  }

  void take(JobReport const &report) {
    if (!uuid_.empty() && report.uuid != uuid_) return lose();
    uuid_ = report.uuid;
    hold_until_ = report.hold_until;
    began_ = began_ || report.began;
    news_.status = job_status(report, std::time(nullptr));
    publish();
  }

  // The print service does not know the job. One that had ended before has only been cleared away.
  void lose() {
    news_.trouble.clear();
    if (news_.status.over())
      news_.status.can_cancel = false;
    else
      news_.status = lost_job_status();
    publish();
  }

  void begin(Order order) {
    news_.order = order;
    news_.note = {};
    publish();
  }

  void end(std::string note) {
    news_.order = Order::none;
    news_.note = std::move(note);
    publish();
  }

  void cancel() {
    begin(Order::cancelling);
    auto const reply = take_out();
    // One that ended meanwhile shows at the next look.
    if (reply == Reply::done || reply == Reply::not_possible) return end("");
    end(reply == Reply::not_allowed
            ? tr("You may not cancel this job. Ask the administrator of the queue.")
            : tr("The job could not be cancelled: {0}", talk_.error()));
  }

  Reply take_out() {
    return reply_of(talk_.ask(talk_.job_question(IPP_OP_CANCEL_JOB, news_.number), "/jobs/").second);
  }

  void retry() {
    begin(Order::sending_again);
    switch (restart()) {
      case Reply::done:
        news_.status = job_status({}, std::time(nullptr));
        return end(tr("Job {0} was started again from the print service's own copy.", news_.number));
      case Reply::no_answer:
        //: {0} is a whole sentence with its full stop, here and wherever a text ends with a placeholder.
        return end(tr("Nothing was sent again: {0}", talk_.error()));
      default:
        return submit_again();
    }
  }

  Reply restart() {
    ipp_t *const question = talk_.job_question(IPP_OP_RESTART_JOB, news_.number);
    if (!began_ && !hold_until_.empty())
      ippAddString(question, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "job-hold-until", nullptr, hold_until_.c_str());
    return reply_of(talk_.ask(question, "/jobs/").second);
  }

  void submit_again() {
    if (news_.status.can_cancel) {
      auto const reply = take_out();
      if (reply != Reply::done && reply != Reply::not_possible)
        return end(tr("Nothing was sent again, since the failed job could not be taken out of the queue: {0}",
                      talk_.error()));
      news_.status.can_cancel = false;
    }
    if (!request_.document.is_unchanged())
      return end(tr("The document was changed since it was sent. Print it again from its program."));
    if (began_) std::erase_if(request_.options, [](Setting const &one) { return one.key == "job-hold-until"; });
    auto const number = submit(server_, request_, [&](std::uint64_t, std::uint64_t) { return goes_on(); });
    if (!number) return end(number.failure().text());
    news_ = {};
    news_.number = number.value();
    news_.status = job_status({}, std::time(nullptr));
    uuid_.clear();
    began_ = false;
    end(tr("The document on this computer was sent again, as job {0}.", news_.number));
  }

  bool goes_on() {
    std::lock_guard const lock(board_->mutex);
    return !board_->left && !std::exchange(board_->cancel_wanted, false);
  }

  std::shared_ptr<WatchBoard> const board_;
  Server const server_;
  JobTalk talk_;
  JobRequest request_;
  WatchPace const pace_;
  JobNews news_;
  std::string uuid_;
  std::string hold_until_;  // of the last report
  bool began_ = false;      // the job was processed at least once
};

}  // namespace

JobWatch::JobWatch(Server const &server, SubmittedJob const &job, WatchPace pace)
    : board_(std::make_shared<WatchBoard>(job.number)) {
  auto follower = std::make_shared<Follower>(board_, server, job, pace);
  std::thread([follower = std::move(follower)] { follower->run(); }).detach();
}

JobWatch::~JobWatch() {
  std::lock_guard const lock(board_->mutex);
  board_->left = true;
  board_->ordered.notify_one();
}

int JobWatch::copy_descriptor() const { return fcntl(board_->descriptor, F_DUPFD_CLOEXEC, 0); }

JobNews JobWatch::read_news() {
  eventfd_t count = 0;
  std::lock_guard const lock(board_->mutex);
  eventfd_read(board_->descriptor, &count);
  return board_->news;
}

void JobWatch::cancel_job() {
  std::lock_guard const lock(board_->mutex);
  board_->cancel_wanted = true;
  board_->ordered.notify_one();
}

void JobWatch::retry() {
  std::lock_guard const lock(board_->mutex);
  board_->retry_wanted = true;
  board_->ordered.notify_one();
}

}  // namespace fax::host
