// A host for function packs: makes values, calls a pack's functions by name, and gives the packs
// the services of include/efi.
//
//     efihost::Pack pack;
//     efihost::Host host;
//     Value w = host.call(pack, "daublet", 4);
//     Value y = host.call(pack, "dwt", Value::column(samples), 3, w);
//
// Packs have state, so no two calls in the process overlap: there is one lock, and every call takes
// it (call_lock.h). It is recursive, so a user function may call the library again.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "efi/services.h"
#include "efihost/call_lock.h"
#include "efihost/error.h"
#include "efihost/pack.h"
#include "efihost/value.h"

namespace efihost {

// Where the Fourier transforms of this build come from: "kissfft" or "fftw".
EFI_HOST const char* fourierEngine();

class EFI_HOST Host {
 public:
    Host();
    virtual ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // Calls a function. Throws Error when the result is an error value, when the pack has no such
    // function, or when the number of arguments is wrong for a function of fixed arity. What a user
    // function or the interruption question throws comes out unchanged.
    Value call(const Function& function, std::span<const Value> arguments);
    Value call(const Pack& pack, std::string_view name, const std::vector<Value>& arguments) {
        return call(pack.function(name), arguments);
    }
    template <class... Arguments>
    requires(std::convertible_to<Arguments, Value>&&...) Value
        call(const Pack& pack, std::string_view name, Arguments&&... arguments) {
        return call(pack, name, std::vector<Value>{Value(std::forward<Arguments>(arguments))...});
    }

    // The same, but an error value is a result like any other.
    Value callRaw(const Function& function, std::span<const Value> arguments);
    Value callRaw(const Pack& pack, std::string_view name, const std::vector<Value>& arguments) {
        return callRaw(pack.function(name), arguments);
    }

    // A series of calls of a function, in one turn: `arguments` gives those of call i, and `take` gets its
    // result, as from callRaw, and says whether to go on. What a call leaves behind serves the next one, so
    // that a series of short calls costs a fraction of as many single ones.
    void callSeries(const Function& function, std::size_t count,
                    const std::function<std::span<const Value>(std::size_t)>& arguments,
                    const std::function<bool(std::size_t, const Value&)>& take);

    // The most arguments that a call may have.
    static constexpr int maxArguments = 12;

    // Takes the lock that every call takes. A caller who holds another lock that user functions need,
    // such as an interpreter's, must release that one first.
    static std::unique_lock<CallLock> lock();

    // Asked whenever a pack polls for interruption; true ends the call with "interrupted". What it
    // throws comes out of the call. It may set another question, or none.
    void setInterrupt(std::function<bool()> question);

    // Root cells not removed, and references to the services not released.
    int liveRoots() const;
    int heldInterfaces() const;

    // The services that packs reach through include/efi. A derived host may override any. Each may
    // throw what include/efi allows; null, or a failing status, means that there is no memory.
    virtual aMatrix* makeMatrix(int rows, int cols, double* re, double* im, unsigned bytes);
    virtual aComplex* makeScalar();
    virtual Cons* makeCell(Anyval* value, Cons* next);
    virtual Anyval* makeError(const char* message, int argIndex);
    virtual EfiRootSet* openRootSet();
    virtual Anyval** addRoot();
    virtual void removeRoot(Anyval** cell);
    virtual std::int32_t applyList(aLambda* function, Cons* arguments, Anyval** result);
    virtual std::int32_t applyOne(aLambda* function, Anyval* argument, Anyval** result);
    virtual std::int32_t pollInterrupt();
    virtual aMatrix* transform(Anyval* column, bool inverse);
    virtual std::int64_t findNested(const aMatrix* matrix, std::int64_t from);
    virtual Anyval* readNested(const aMatrix* matrix, int row, int col);
    virtual std::int32_t writeNested(aMatrix* matrix, int row, int col, Anyval* value);

 private:
    friend class Call;
    struct State;
    std::unique_ptr<State> state_;
};

// A call in progress, for calling the exports of a pack directly: holds the lock, provides the
// context, and owns what is made in the call.
class EFI_HOST Call {
 public:
    explicit Call(Host& host);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    EfiCallContext* context() const;

    // The result of the pack as a value that outlives the call; empty for null. Rethrows what a user
    // function or the interruption question threw meanwhile.
    Value finish(Anyval* result);

    // Begins another call in place of this one, whose values live on only where somebody holds them.
    void restart();

 private:
    friend class Host;
    struct Frame;
    std::unique_lock<CallLock> lock_;
    Host& host_;
    std::unique_ptr<Frame> frame_;
    Frame* outer_;
};

}  // namespace efihost
