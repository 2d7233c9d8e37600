#include "core/Fibers.h"

#include <cxxabi.h>

#include <algorithm>
#include <boost/context/fiber.hpp>
#include <boost/context/protected_fixedsize_stack.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define NORWEN_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NORWEN_ADDRESS_SANITIZER
#endif
#endif
#ifdef NORWEN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif

namespace core {

namespace {

constexpr std::size_t stackBytes = 1U << 20U;

// Stacks with a guard page. The frames that a fiber ended in are marked for the address sanitizer, and the marks must
// not outlive them: the memory may be somebody else's next.
class Stacks {
  public:
    boost::context::stack_context allocate() { return stacks_.allocate(); }
    void deallocate(boost::context::stack_context& stack) {
#ifdef NORWEN_ADDRESS_SANITIZER
        __asan_unpoison_memory_region(static_cast<char*>(stack.sp) - stack.size, stack.size);
#endif
        stacks_.deallocate(stack);
    }

  private:
    boost::context::protected_fixedsize_stack stacks_{stackBytes};
};

// Which exceptions are being handled: the runtime keeps it a thread, and each stack has its own. The layout is that of
// the C++ ABI.
struct ExceptionState {
    void* caught = nullptr;
    unsigned int uncaught = 0;
};

void SwapExceptionState(ExceptionState& other) {
    std::swap(*reinterpret_cast<ExceptionState*>(abi::__cxa_get_globals()), other);
}

}  // namespace

// The address sanitizer is told of each switch: which stack comes, and where the frames it moved aside are kept.
class Fiber {
  public:
    explicit Fiber(std::function<void()> work)
        : work_(std::move(work)), stack_(allocator_.allocate()), there_(MakeContext()) {}

    // From the thread's own stack to this one, and back when it parks or ends.
    void Enter() {
        SwapExceptionState(exceptions_);
#ifdef NORWEN_ADDRESS_SANITIZER
        __sanitizer_start_switch_fiber(&threadFrames_, static_cast<char*>(stack_.sp) - stack_.size, stack_.size);
#endif
        there_ = std::move(there_).resume();
#ifdef NORWEN_ADDRESS_SANITIZER
        __sanitizer_finish_switch_fiber(threadFrames_, nullptr, nullptr);
#endif
        SwapExceptionState(exceptions_);
    }

    // The way back.
    void Leave() {
#ifdef NORWEN_ADDRESS_SANITIZER
        __sanitizer_start_switch_fiber(&frames_, threadStack_, threadStackSize_);
#endif
        back_ = std::move(back_).resume();
#ifdef NORWEN_ADDRESS_SANITIZER
        Arrived(frames_);
#endif
    }

    bool Ended() const {
        return !there_;
    }
    std::exception_ptr failure;

  private:
    boost::context::fiber MakeContext() {
        return {std::allocator_arg, boost::context::preallocated(stack_.sp, stack_.size, stack_), allocator_,
                [this](boost::context::fiber&& back) {
                    back_ = std::move(back);
                    Arrived(nullptr);
                    try {
                        work_();
                    } catch (...) {
                        failure = std::current_exception();
                    }
                    work_ = nullptr;
#ifdef NORWEN_ADDRESS_SANITIZER
                    __sanitizer_start_switch_fiber(nullptr, threadStack_, threadStackSize_);
#endif
                    return std::move(back_);
                }};
    }

    void Arrived([[maybe_unused]] void* frames) {
#ifdef NORWEN_ADDRESS_SANITIZER
        __sanitizer_finish_switch_fiber(frames, &threadStack_, &threadStackSize_);
#endif
    }

    std::function<void()> work_;
    Stacks allocator_;
    boost::context::stack_context stack_;
    boost::context::fiber there_;
    boost::context::fiber back_;
    ExceptionState exceptions_;
#ifdef NORWEN_ADDRESS_SANITIZER
    void* frames_ = nullptr;
    void* threadFrames_ = nullptr;
    const void* threadStack_ = nullptr;
    std::size_t threadStackSize_ = 0;
#endif
};

Fibers::Fibers() = default;

Fibers::~Fibers() {
    if (!fibers_.empty()) {
        std::fprintf(stderr, "%zu conversations were dropped\n", fibers_.size());
        std::abort();
    }
}

void Fibers::Start(std::function<void()> work) {
    Switch(**fibers_.insert(std::make_unique<Fiber>(std::move(work))).first);
}

void Fibers::Park() {
    current_->Leave();
}

void Fibers::Resume(Fiber& fiber) {
    Switch(fiber);
}

void Fibers::Switch(Fiber& fiber) {
    current_ = &fiber;
    fiber.Enter();
    current_ = nullptr;
    if (fiber.Ended()) {
        const std::exception_ptr failure = fiber.failure;
        const auto at =
            std::find_if(fibers_.begin(), fibers_.end(), [&](const auto& one) { return one.get() == &fiber; });
        fibers_.erase(at);
        if (failure) {
            std::rethrow_exception(failure);
        }
    }
}

}  // namespace core
