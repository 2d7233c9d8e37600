#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>

// Stacks that can be left and come back to, on the one thread of the program. Only Clock uses them: a conversation
// waits by parking its fiber.
namespace core {

class Fiber;

class Fibers {
  public:
    Fibers();
    // No fiber may be left: one that is dropped would lose what it has on its stack. Ends the program if one is.
    ~Fibers();
    Fibers(const Fibers&) = delete;
    Fibers& operator=(const Fibers&) = delete;

    // Runs `work` on a stack of its own, of 1 MiB, up to its first Park. To be called outside of a fiber. What `work`
    // throws comes out of here, or out of the Resume that it was thrown behind.
    void Start(std::function<void()> work);

    // The fiber whose stack is in use; null: the thread's own.
    Fiber* Current() const { return current_; }

    // Leaves the fiber in use; returns when it is resumed.
    void Park();

    // Goes on behind the Park of a fiber, up to its next one or its end. To be called outside of a fiber.
    void Resume(Fiber& fiber);

    // How many have not come to their end.
    std::size_t Count() const { return fibers_.size(); }

  private:
    void Switch(Fiber& fiber);

    std::set<std::unique_ptr<Fiber>> fibers_;
    Fiber* current_ = nullptr;
};

}  // namespace core
