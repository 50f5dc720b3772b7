#include "efihost/host.h"

#include <algorithm>
#include <array>
#include <exception>
#include <functional>
#include <list>
#include <new>

#include "argument_names.h"
#include "efi/faults.h"
#include "faults.h"
#include "fourier.h"
#include "invoke.h"
#include "services.h"
#include "values.h"

namespace efihost {

namespace {

// A cell of a list, with a handle that keeps its value alive.
struct ListCell {
    Cons cell;
    Value value;
};

// The pack writes into the cell unseen; `held` is brought up to date before anything is freed.
struct Root {
    Anyval* cell = nullptr;
    Value held;
};

}  // namespace

// What a call owns until it ends. A call may evaluate and transform millions of times, so results live
// only until the next one, and matrices lent to a function until it returns.
struct Call::Frame {
    explicit Frame(Host::State& state);

    // The host's part of a user function; null for anything else.
    OwnedFunction* calleeOf(const aLambda* function);
    // Drops a list and the matrices in it. Those that the user or the result holds live on.
    void release(const Cons* list);

    template <class Owned, class... Arguments>
    Owned& make(Arguments&&... given) {
        made.push_back(Values::make<Owned>(std::forward<Arguments>(given)...));
        return Values::get<Owned>(made.back());
    }
    // A scalar, of those that earlier calls have left if there are any.
    OwnedScalar& makeScalar();
    // Drops what the call has made. Scalars that nobody holds are kept for the next call.
    void clear();

    EfiCallContext context;
    std::vector<Value> made;
    std::vector<Value> spareScalars;
    std::list<ListCell> lists;
    Value evaluated;
    Value transformed;
    std::vector<Value> arguments;  // of the last evaluation
    Value callee;                  // of the last evaluation
    std::exception_ptr thrown;     // rethrown when the pack has returned
    FaultTranslation faults;
};

namespace {

// The question whether the user wants to stop. A poll may set another one: then it is kept until it has
// been answered. (Sharing it with the poll would cost as much as the question.)
class Question {
 public:
    void set(std::function<bool()> question) {
        questions.push_back(std::move(question));
        dropReplaced();
    }

    bool ask() {
        if (questions.empty() || !questions.back()) return false;
        const Asking asking(*this);
        return questions.back()();
    }

 private:
    struct Asking {
        explicit Asking(Question& asked) : question(asked) { ++question.inProgress; }
        ~Asking() {
            --question.inProgress;
            question.dropReplaced();
        }
        Asking(const Asking&) = delete;
        Asking& operator=(const Asking&) = delete;

        Question& question;
    };

    void dropReplaced() {
        if (inProgress == 0 && questions.size() > 1) questions.erase(questions.begin(), --questions.end());
    }

    std::list<std::function<bool()>> questions;  // the last one is asked
    int inProgress = 0;
};

}  // namespace

struct Host::State {
    explicit State(Host& host) : allocator(host), rootSet(host, allocator), evaluator(host) {}

    Call::Frame& current() const;
    void holdRoots();
    std::int32_t apply(const aLambda* function, const Cons* arguments, Anyval** result);

    Allocator allocator;
    RootSet rootSet;
    Evaluator evaluator;
    std::list<Root> roots;
    Question question;
    FourierTransformer fourier;
    Call::Frame* frame = nullptr;
    Value outOfMemory = Value::error("out of memory", 0);  // made while there is memory
};

Call::Frame::Frame(Host::State& state) : context{&state.allocator, &state.evaluator} {}

OwnedFunction* Call::Frame::calleeOf(const aLambda* function) {
    if (!function) return nullptr;
    if (callee.raw() != function) callee = Value::of(function);
    return callee.isFunction() ? &Values::get<OwnedFunction>(callee) : nullptr;
}

namespace {

// Searches from the end: what is dropped was mostly made last.
template <class Elements, class Question>
void eraseLast(Elements& elements, Question question) {
    const auto found = std::find_if(elements.rbegin(), elements.rend(), question);
    if (found != elements.rend()) elements.erase(std::next(found).base());
}

}  // namespace

void Call::Frame::release(const Cons* list) {
    arguments.clear();
    while (list) {
        const Cons* cell = std::exchange(list, list->next);
        eraseLast(made, [=](const Value& value) { return value.isMatrix() && value.raw() == cell->value; });
        eraseLast(lists, [=](const ListCell& each) { return &each.cell == cell; });
    }
}

OwnedScalar& Call::Frame::makeScalar() {
    if (spareScalars.empty()) return make<OwnedScalar>();
    made.push_back(std::move(spareScalars.back()));
    spareScalars.pop_back();
    auto& scalar = Values::get<OwnedScalar>(made.back());
    scalar.re = scalar.im = 0.0;
    return scalar;
}

void Call::Frame::clear() {
    constexpr std::size_t mostSpare = 4;
    for (Value& value : made) {
        const bool isSpare = value.isScalar() && Values::isSole(value) && spareScalars.size() < mostSpare;
        if (isSpare) spareScalars.push_back(std::move(value));
    }
    made.clear();
    lists.clear();
    arguments.clear();
    evaluated = transformed = callee = Value();
}

Call::Frame& Host::State::current() const {
    if (!frame) throw "no call is in progress";
    return *frame;
}

void Host::State::holdRoots() {
    for (Root& root : roots) {
        if (root.held.raw() != root.cell) root.held = Value::of(root.cell);
    }
}

namespace {

// Only three things may be thrown through a pack. Anything else that user code throws is kept until
// the pack has returned, and the pack is told that the user has interrupted.
template <class Work>
std::int32_t shielded(std::exception_ptr& thrown, Work work) {
    try {
        return work();
    } catch (const char*) {
        throw;
    } catch (aError*) {
        throw;
    } catch (SE_FPE_Exception&) {
        throw;
    } catch (...) {
        thrown = std::current_exception();
        return efiInterrupted;
    }
}

template <class Make>
auto orNull(Make make) -> decltype(make()) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

// Scalars are copied: a pack may pass one of its own, and change it for the next evaluation.
void takeArguments(std::vector<Value>& taken, const Cons* list) {
    std::size_t count = 0;
    for (; list; list = list->next, ++count) {
        if (taken.size() == count) taken.emplace_back();
        const Anyval* value = list->value;
        if (value && value->tag == TagScalar) {
            const auto& scalar = static_cast<const aComplex&>(*value);
            taken[count].setScalar({scalar.re, scalar.im});
        } else {
            taken[count] = Value::of(value);
        }
    }
    taken.resize(count);
}

const aComplex* oneRealScalar(const Cons* list) {
    if (!list || list->next || !list->value || list->value->tag != TagScalar) return nullptr;
    const auto* scalar = static_cast<const aComplex*>(list->value);
    return scalar->im == 0.0 ? scalar : nullptr;
}

void evaluateReal(const RealCallback& function, const Cons* arguments, Value& result) {
    if (const aComplex* x = oneRealScalar(arguments)) {
        result.setScalar(function(x->re));
    } else {
        result = Value::error("must be real scalar", 0);
    }
}

}  // namespace

std::int32_t Host::State::apply(const aLambda* function, const Cons* arguments, Anyval** result) {
    *result = nullptr;
    Call::Frame& calling = current();
    if (calling.thrown) return efiInterrupted;
    const OwnedFunction* callee = calling.calleeOf(function);
    if (!callee) return 0;
    holdRoots();
    return shielded(calling.thrown, [&] {
        forgetWithheldFault();
        if (callee->real) {
            evaluateReal(callee->real, arguments, calling.evaluated);
        } else {
            takeArguments(calling.arguments, arguments);
            calling.evaluated = callee->callback(calling.arguments);
        }
        throwWithheldFault();
        *result = calling.evaluated.raw();
        return 0;
    });
}

Call::Call(Host& host)
    : lock_(Host::lock()),
      host_(host),
      frame_(std::make_unique<Frame>(*host.state_)),
      outer_(std::exchange(host.state_->frame, frame_.get())) {}

Call::~Call() {
    host_.state_->holdRoots();
    host_.state_->frame = outer_;
}

EfiCallContext* Call::context() const {
    return &frame_->context;
}

// The result is mostly what was made last, which need not be looked for.
Value Call::finish(Anyval* result) {
    if (frame_->thrown) std::rethrow_exception(std::exchange(frame_->thrown, nullptr));
    const bool isLast = result != nullptr && !frame_->made.empty() && frame_->made.back().raw() == result;
    return isLast ? frame_->made.back() : Value::of(result);
}

void Call::restart() {
    host_.state_->holdRoots();
    frame_->clear();
    forgetWithheldFault();
}

Host::Host() : state_(std::make_unique<State>(*this)) {}

Host::~Host() = default;

std::unique_lock<CallLock> Host::lock() {
    return std::unique_lock(CallLock::instance());
}

namespace {

Error errorOf(const Function& function, std::size_t count, const std::string& message, int argument) {
    const std::string_view name = argumentName(function, count, argument);
    return {std::string(function.name), message, argument, std::string(name)};
}

}  // namespace

Value Host::call(const Function& function, std::span<const Value> arguments) {
    Value result = callRaw(function, arguments);
    if (!result) throw errorOf(function, arguments.size(), "no result", 0);
    if (result.isError()) throw errorOf(function, arguments.size(), result.message(), result.argument());
    return result;
}

namespace {

Value callIn(Call& calling, const Function& function, std::span<const Value> arguments) {
    const std::size_t count = arguments.size();
    const bool fits =
        function.arity ? count == static_cast<std::size_t>(*function.arity) : count <= Host::maxArguments;
    if (!fits) throw errorOf(function, count, "Wrong number of Arguments", 0);
    const auto empty =
        std::find_if_not(arguments.begin(), arguments.end(), std::mem_fn(&Value::operator bool));
    if (empty != arguments.end()) {
        throw errorOf(function, count, "no value", static_cast<int>(empty - arguments.begin()) + 1);
    }
    std::array<Anyval*, Host::maxArguments> raw{};
    std::transform(arguments.begin(), arguments.end(), raw.begin(), std::mem_fn(&Value::raw));
    return calling.finish(invoke(function, calling.context(), {raw.data(), count}));
}

}  // namespace

Value Host::callRaw(const Function& function, std::span<const Value> arguments) {
    Call calling(*this);
    return callIn(calling, function, arguments);
}

void Host::callSeries(const Function& function, std::size_t count,
                      const std::function<std::span<const Value>(std::size_t)>& arguments,
                      const std::function<bool(std::size_t, const Value&)>& take) {
    Call calling(*this);
    for (std::size_t i = 0; i < count; ++i) {
        if (!take(i, callIn(calling, function, arguments(i)))) return;
        calling.restart();
    }
}

void Host::setInterrupt(std::function<bool()> question) {
    state_->question.set(std::move(question));
}

int Host::liveRoots() const {
    return static_cast<int>(state_->roots.size());
}

int Host::heldInterfaces() const {
    return static_cast<int>(state_->allocator.references() + state_->rootSet.references() +
                            state_->evaluator.references());
}

aMatrix* Host::makeMatrix(int rows, int cols, double* re, double* im, unsigned bytes) {
    const std::int64_t cells = std::int64_t{rows} * cols;
    if (rows < 0 || cols < 0 || bytes % sizeof(double) != 0 ||
        cells != bytes / std::int64_t{sizeof(double)}) {
        throw "the size of a matrix does not fit its rows and columns";
    }
    return orNull([&]() -> aMatrix* {
        auto& matrix = state_->current().make<OwnedMatrix>(rows, cols);
        matrix.re = re;
        matrix.im = im;
        return &matrix;
    });
}

aComplex* Host::makeScalar() {
    return orNull([&]() -> aComplex* { return &state_->current().makeScalar(); });
}

Cons* Host::makeCell(Anyval* value, Cons* next) {
    return orNull([&]() -> Cons* {
        return &state_->current().lists.emplace_back(ListCell{{value, next}, Value::of(value)}).cell;
    });
}

Anyval* Host::makeError(const char* message, int argIndex) {
    try {
        return &state_->current().make<OwnedError>(message ? message : "", argIndex);
    } catch (const std::bad_alloc&) {
        Values::get<OwnedError>(state_->outOfMemory).argIndex = 0;
        return state_->outOfMemory.raw();
    }
}

EfiRootSet* Host::openRootSet() {
    state_->rootSet.AddRef();
    return &state_->rootSet;
}

Anyval** Host::addRoot() {
    return orNull([&]() -> Anyval** { return &state_->roots.emplace_back().cell; });
}

void Host::removeRoot(Anyval** cell) {
    state_->roots.remove_if([=](const Root& root) { return &root.cell == cell; });
}

std::int32_t Host::applyList(aLambda* function, Cons* arguments, Anyval** result) {
    const std::int32_t status = state_->apply(function, arguments, result);
    state_->current().release(arguments);
    return status;
}

std::int32_t Host::applyOne(aLambda* function, Anyval* argument, Anyval** result) {
    const Cons list{argument, nullptr};
    return state_->apply(function, &list, result);
}

std::int32_t Host::pollInterrupt() {
    Call::Frame& frame = state_->current();
    if (frame.thrown) return efiInterrupted;
    return shielded(frame.thrown, [&] { return state_->question.ask() ? efiInterrupted : 0; });
}

namespace {

// Reuses the column in `slot` when nothing else holds it and the length is right.
const aMatrix& columnIn(Value& slot, int rows) {
    if (!slot.isMatrix() || !Values::isSole(slot) || slot.rows() != rows) slot = Value::blank(rows, 1, true);
    return slot.matrix();
}

}  // namespace

aMatrix* Host::transform(Anyval* column, bool inverse) {
    const auto failed = [&](const char* message) { return static_cast<aMatrix*>(makeError(message, 1)); };
    if (!column || column->tag != TagArray) return failed("must be array");
    const auto& input = static_cast<const aMatrix&>(*column);
    if (input.cols != 1) return failed("must be vector");
    if (input.rows < 1) return failed("must not be empty");
    if (Host::findNested(&input, 0) >= 0) return failed("must be numbers");
    state_->holdRoots();
    try {
        Value& last = state_->current().transformed;
        const aMatrix& result = columnIn(last, input.rows);
        const auto n = static_cast<std::size_t>(input.rows);
        state_->fourier.transform({n, input.re, input.im}, inverse, {n, result.re, result.im});
        return static_cast<aMatrix*>(last.raw());
    } catch (const std::bad_alloc&) {
        return static_cast<aMatrix*>(makeError("out of memory", 0));
    }
}

std::int64_t Host::findNested(const aMatrix* matrix, std::int64_t from) {
    const Value value = Value::of(matrix);
    if (!value) return -1;
    const Cells& cells = Values::get<OwnedMatrix>(value).cells;
    const auto found = cells.lower_bound(from);
    return found == cells.end() ? -1 : found->first;
}

Anyval* Host::readNested(const aMatrix* matrix, int row, int col) {
    const Value value = Value::of(matrix);
    const bool inside = value && Values::get<OwnedMatrix>(value).has(row, col);
    return inside ? value.nested(row, col).raw() : nullptr;
}

std::int32_t Host::writeNested(aMatrix* matrix, int row, int col, Anyval* value) {
    const Value outer = Value::of(matrix);
    const Value inner = Value::of(value);
    if (!outer || !inner || matrix == value || !Values::get<OwnedMatrix>(outer).has(row, col)) {
        throw "a value that cannot be nested where it should be";
    }
    try {
        auto& owned = Values::get<OwnedMatrix>(outer);
        Value& cell = owned.cells[owned.place(row, col)];
        // The pack may still use the value that was there.
        if (cell) state_->current().made.push_back(cell);
        cell = inner;
        return 0;
    } catch (const std::bad_alloc&) {
        return statusNoMemory;
    }
}

}  // namespace efihost
