// SPDX-License-Identifier: MIT
#include "toolkit/workers/worker_pool.h"

#include "toolkit/workers/processor_share.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

using Clock = std::chrono::steady_clock;

/// One of the places for a worker. It keeps its processors from one worker to the next.
class Place {
public:
    explicit Place(ProcessorSet const* processors) : processors_(processors) {}

    bool busy() const { return conversation_ != nullptr; }
    Conversation& conversation() const { return *conversation_; }

    /// Has a worker begin with work number @p index, unless there is nothing to do or that fails.
    void begin(std::size_t index, PoolClient& client)
    {
        ending_ = {};
        ending_.index = index;
        start_ = Clock::now();
        guarded([&] {
            task_ = client.open(index);
            if (task_) {
                Hearing hearing;
                hearing.note = [index, &client](std::string const& file, Note const& note) {
                    client.note(index, file, note);
                };
                conversation_ = std::make_unique<Conversation>(task_->job(), task_->briefing(),
                                                               std::move(hearing), processors_);
            }
        });
        if (ending_.failure) {
            end(client);
        }
    }

    /// The worker has said all that it had to say.
    void finish(PoolClient& client)
    {
        guarded([&] {
            nlohmann::json report = conversation_->finish();
            task_->complete(report);
            ending_.report = std::move(report);
        });
        ending_.chatter = conversation_->chatter();
        ending_.peak_kib = conversation_->peak_kib();
        end(client);
    }

    void stop(PoolClient& client)
    {
        ending_.stopped = true;
        end(client);
    }

private:
    /// Makes whatever goes wrong the end of this piece of work.
    template <typename Body>
    void guarded(Body&& body)
    {
        try {
            body();
        } catch (Failure const& failure) {
            ending_.failure.emplace(failure);
        } catch (std::exception const& error) {
            std::string const name = task_ ? task_->briefing().input : std::string("umbrix");
            ending_.failure.emplace(Fault::kUnexpected, name, error.what());
        }
    }

    void end(PoolClient& client)
    {
        conversation_.reset(); // the worker first: it may be writing into the task's files
        task_.reset();
        ending_.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
        client.end(ending_);
    }

    ProcessorSet const* processors_;
    std::unique_ptr<PoolTask> task_;
    std::unique_ptr<Conversation> conversation_;
    Clock::time_point start_;
    PoolEnding ending_;
};

class Pool {
public:
    Pool(std::size_t count, std::size_t workers, PoolClient& client, Stop const& stop)
        : count_(count), client_(client), stop_(stop), shares_(share_processors(workers))
    {
        for (std::size_t i = 0; i < workers; ++i) {
            places_.emplace_back(shares_.empty() ? nullptr : &shares_[i]);
        }
    }

    bool run()
    {
        fill_places();
        while (running() > 0) {
            listen();
            fill_places();
        }
        return !stopping_;
    }

private:
    std::size_t running() const
    {
        auto const busy = [](Place const& place) { return place.busy(); };
        return static_cast<std::size_t>(std::count_if(places_.begin(), places_.end(), busy));
    }

    void fill_places()
    {
        for (Place& place : places_) {
            // Work that is nothing or fails at once leaves its place free.
            while (!place.busy() && next_ < count_ && !noticed_interrupt()) {
                place.begin(next_++, client_);
            }
        }
    }

    bool noticed_interrupt()
    {
        if (stop_.take()) {
            if (stopping_) {
                stop_all();
            } else {
                stopping_ = true;
                client_.stopping(running());
            }
        }
        return stopping_;
    }

    void stop_all()
    {
        for (Place& place : places_) {
            if (place.busy()) {
                place.stop(client_);
            }
        }
    }

    /// Waits for something to happen and takes it in.
    void listen()
    {
        std::vector<pollfd> records{{stop_.descriptor(), POLLIN, 0}};
        std::vector<Place*> listened;
        int limit = -1;
        for (Place& place : places_) {
            if (place.busy()) {
                listened.push_back(&place);
                records.resize(records.size() + Conversation::kDescriptors);
                place.conversation().fill(&records[records.size() - Conversation::kDescriptors]);
                int const patience = place.conversation().patience();
                limit = limit < 0 ? patience : patience < 0 ? limit : std::min(limit, patience);
            }
        }
        if (poll(records.data(), records.size(), limit) < 0) {
            if (errno != EINTR) {
                throw Failure(Fault::kWorkerUnheard, "umbrix",
                              std::string("no word from its workers: ") + std::strerror(errno));
            }
            return;
        }
        pollfd const* heard = &records[1];
        for (Place* place : listened) {
            if (!place->conversation().listen(heard)) {
                place->finish(client_);
            }
            heard += Conversation::kDescriptors;
        }
        noticed_interrupt();
    }

    std::size_t count_;
    PoolClient& client_;
    Stop const& stop_;
    std::vector<ProcessorSet> shares_;
    std::vector<Place> places_;
    std::size_t next_ = 0;
    bool stopping_ = false;
};

} // namespace

bool run_pool(std::size_t count, std::size_t workers, PoolClient& client, Stop const& stop)
{
    return Pool(count, std::clamp<std::size_t>(workers, 1, std::max<std::size_t>(count, 1)), client, stop)
        .run();
}

} // namespace umbrixlib::toolkit
