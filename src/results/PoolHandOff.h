#pragma once

#include <QMetaObject>

#include <memory>
#include <mutex>

// Where work finished on a pool thread is handed back to the object that
// asked for it, on that object's thread; nowhere once the object is gone. The
// object holds the hand-off as its last member, so that it lets go before
// anything else of the object goes; each task holds a Sender, which may
// outlive the object.
template <typename Receiver> class PoolHandOff {
    struct Place {
        std::mutex mutex;
        Receiver* receiver = nullptr;
    };

public:
    class Sender {
    public:
        // From any thread: `take(receiver)` runs on the receiver's thread,
        // unless the receiver is gone first.
        template <typename Take> void send(Take take) const
        {
            std::lock_guard lock(place->mutex);
            if (Receiver* receiver = place->receiver) {
                QMetaObject::invokeMethod(
                    receiver, [receiver, take = std::move(take)] { take(receiver); },
                    Qt::QueuedConnection);
            }
        }

    private:
        friend class PoolHandOff;
        explicit Sender(std::shared_ptr<Place> to)
            : place(std::move(to))
        {}

        std::shared_ptr<Place> place;
    };

    explicit PoolHandOff(Receiver* receiver)
        : place(std::make_shared<Place>())
    {
        place->receiver = receiver;
    }
    PoolHandOff(const PoolHandOff&) = delete;
    PoolHandOff& operator=(const PoolHandOff&) = delete;
    ~PoolHandOff()
    {
        std::lock_guard lock(place->mutex);
        place->receiver = nullptr;
    }

    [[nodiscard]] Sender sender() const { return Sender(place); }

private:
    std::shared_ptr<Place> place;
};
