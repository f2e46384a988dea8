#include "harness.h"

#include <algorithm>
#include <cinttypes>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <deque>

#include "mivor/control_area.h"
#include "mivor/matrix_cases.h"
#include "mivor/record.h"
#include "mivor/values.h"
#include "mivori.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MIVOR_FUZZ_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define MIVOR_FUZZ_ASAN 1
#endif
#if defined(MIVOR_FUZZ_ASAN)
#include <sanitizer/asan_interface.h>
#endif

namespace mivor::fuzz {

using tool::OperandCopies;
using tool::ReportForm;

namespace {

// A library that keeps reporting this long after the handler has turned
// IEEE results on and declines every retry is looping by itself.
constexpr int kRunaway = 100000;

std::uint64_t fnv1a(std::string_view s) {
    std::uint64_t h = 0xCBF29CE484222325u;
    for (unsigned char c : s) h = (h ^ c) * 0x100000001B3u;
    return h;
}

std::string hex(const void* p, std::size_t n) {
    static const char digits[] = "0123456789ABCDEF";
    std::string s;
    const auto* b = static_cast<const unsigned char*>(p);
    for (std::size_t i = n; i-- > 0;) {  // most significant byte first, as values are written
        s += digits[b[i] >> 4];
        s += digits[b[i] & 15];
    }
    return s;
}

// ---- fields of the control area ----------------------------------------

struct Field {
    std::size_t offset, size;
    const char* name;
};
#define MIVOR_FIELD(f) Field{offsetof(jwe_control_area, f), sizeof(jwe_control_area::f), #f}

// What a report writes, by form: the short form only the retry pointer,
// the number and the cleared fields; the full and direct forms the operand
// copies and descriptors as well.
constexpr Field kShortWrites[] = {
    MIVOR_FIELD(retry_pointer), MIVOR_FIELD(error_number), MIVOR_FIELD(cleared_720), MIVOR_FIELD(cleared_721),
    MIVOR_FIELD(cleared_724),   MIVOR_FIELD(cleared_732),  MIVOR_FIELD(cleared_736), MIVOR_FIELD(cleared_737),
    MIVOR_FIELD(cleared_744)};
constexpr Field kOperandWrites[] = {
    MIVOR_FIELD(first_operand),  MIVOR_FIELD(second_operand), MIVOR_FIELD(operand_count),
    MIVOR_FIELD(operand1_value), MIVOR_FIELD(operand1_type),  MIVOR_FIELD(operand1_pad),
    MIVOR_FIELD(operand2_value), MIVOR_FIELD(operand2_type),  MIVOR_FIELD(operand2_pad)};
constexpr Field kNamed[] = {MIVOR_FIELD(suppress), MIVOR_FIELD(ieee_results), MIVOR_FIELD(retry_word),
                            MIVOR_FIELD(handler_enabled), MIVOR_FIELD(handler)};
#undef MIVOR_FIELD

bool writable(std::size_t offset, ReportForm form) {
    for (const Field& f : kShortWrites)
        if (offset >= f.offset && offset < f.offset + f.size) return true;
    if (form == ReportForm::short_form) return false;
    for (const Field& f : kOperandWrites)
        if (offset >= f.offset && offset < f.offset + f.size) return true;
    return false;
}

std::string field_at(std::size_t offset) {
    const std::span<const Field> lists[] = {kShortWrites, kOperandWrites, kNamed};
    for (const auto& list : lists)
        for (const Field& f : list)
            if (offset >= f.offset && offset < f.offset + f.size) return f.name;
    return "reserved byte " + std::to_string(offset);
}

// The first byte outside the form's writable fields where `now` differs
// from `before`, or -1.
long changed_outside(const jwe_control_area& before, const jwe_control_area& now, ReportForm form) {
    const auto* a = reinterpret_cast<const unsigned char*>(&before);
    const auto* b = reinterpret_cast<const unsigned char*>(&now);
    for (std::size_t i = 0; i < sizeof(jwe_control_area); ++i)
        if (a[i] != b[i] && !writable(i, form)) return static_cast<long>(i);
    return -1;
}

constexpr unsigned char kGuardByte = 0xCB;

// ---- memory poisoning ----------------------------------------------------

void poison(void* p, std::size_t n) {
#if defined(MIVOR_FUZZ_ASAN)
    ASAN_POISON_MEMORY_REGION(p, n);
#else
    (void)p;
    (void)n;
#endif
}
void unpoison(void* p, std::size_t n) {
#if defined(MIVOR_FUZZ_ASAN)
    ASAN_UNPOISON_MEMORY_REGION(p, n);
#else
    (void)p;
    (void)n;
#endif
}

// ---- kinds ----------------------------------------------------------------

bool by_address(std::string_view kind) { return kind != "r8v" && kind != "r16v" && kind != "v2r8"; }
bool through_pointer(std::string_view result) {
    return result == "r16" || result == "c4" || result == "c8" || result == "c16";
}

// The bytes an export may read of argument k: its width, and for anyreal
// the width of the kind its type code names (REAL(4) for a code that names
// none: the narrowest reading touches nothing beyond the operand).
std::size_t readable_width(std::span<const std::string_view> kinds, const Value* args, std::size_t k) {
    if (kinds[k] != "anyreal") return operand_width(kinds[k]);
    const std::string_view named = k + 1 < kinds.size() ? tool::kind_of_type_code(args[k + 1].i4) : "";
    return named.empty() ? 4 : tool::significant_size(named);
}

std::vector<std::int32_t> listed_numbers(std::string_view errors) {
    std::vector<std::int32_t> out;
    if (errors == "-") return out;
    std::size_t start = 0;
    while (start < errors.size()) {
        const std::size_t end = std::min(errors.find(',', start), errors.size());
        out.push_back(std::atoi(std::string(errors.substr(start, end - start)).c_str()));
        start = end + 1;
    }
    return out;
}

// What the harness needs of a row, worked out once.
struct RowFacts {
    std::vector<std::string_view> kinds;
    std::vector<std::int32_t> listed;
    bool matrix = false;  // one argument block, built from an 8-byte seed
};
const RowFacts& facts(const Row& row) {
    // Rows are few and live as long as the program; planted test rows too.
    static std::deque<std::pair<const Row*, RowFacts>> cache;  // references stay valid
    for (const auto& [r, f] : cache)
        if (r == &row) return f;
    RowFacts f{tool::split_kinds(row.args), listed_numbers(row.errors)};
    f.matrix = f.kinds.size() == 1 && f.kinds[0] == "argblk";
    cache.emplace_back(&row, std::move(f));
    return cache.back().second;
}

// Every number some row lists.
const std::vector<std::int32_t>& every_number() {
    static const std::vector<std::int32_t> all = [] {
        std::vector<std::int32_t> v;
        for (const Row& row : exports::rows())
            for (std::int32_t n : listed_numbers(row.errors)) v.push_back(n);
        return v;
    }();
    return all;
}

// The REAL(16) operators, whose numbers other exports list after their
// own when an operator's report reaches their caller unchanged.
bool is_operator(std::string_view name) {
    return name == "g_aqaq" || name == "g_aqsq" || name == "g_aqmq" || name == "g_aqdq";
}

// Whether `number` is the row's own report rather than one of an operator
// it calls.
bool own_number(const Row& row, std::int32_t number) {
    if (is_operator(row.name)) return true;
    static const std::vector<std::int32_t> operators = [] {
        std::vector<std::int32_t> v;
        for (const Row& r : exports::rows())
            if (is_operator(r.name))
                for (std::int32_t n : listed_numbers(r.errors)) v.push_back(n);
        return v;
    }();
    return std::find(operators.begin(), operators.end(), number) == operators.end();
}

// The sine-cosine pairs hand a refused argument to the sine and then to
// the cosine, each reporting with its own retry: a correction reruns one
// half, not the pair, so no argument of the pair expresses it.
bool halves_retry_alone(const Row& row) {
    return row.name == "g_dscn" || row.name == "g_dscnq" || row.name == "g_scns";
}

// ---- one call ---------------------------------------------------------------

// What the handler sees and does during one call.
struct Session {
    const Case* c = nullptr;
    std::span<const std::string_view> kinds;
    std::span<const std::int32_t> listed;
    std::vector<std::string>* findings = nullptr;
    std::size_t stream_at = 0;

    jwe_control_area expected{};  // the area as the handler last left it
    std::int32_t xint_calls_at_start = 0;

    std::vector<std::int32_t> numbers;
    int retries = 0;
    bool capped = false;
    bool saw_argument_report = false;  // a full- or direct-form report
    std::vector<std::int32_t> short_seen;

    // The operands the handler last corrected before a retry, as arguments.
    Value final_args[kMaxArguments] = {};
    bool corrected = false;
    bool unmappable = false;  // a correction no argument can express
    bool corrections_made = false;  // retried or not

    void find(std::string what) {
        if (findings->size() < 8) findings->push_back(std::move(what));
    }

    const std::uint8_t* chunk() {
        static const std::uint8_t zeros[16] = {};
        if (c->stream.empty()) return zeros;
        static thread_local std::uint8_t buffer[16];
        for (int i = 0; i < 16; ++i) buffer[i] = c->stream[(stream_at + i) % c->stream.size()];
        stream_at = (stream_at + 16) % c->stream.size();
        return buffer;
    }
};

Session* g_session = nullptr;

std::string describe_number(std::int32_t n) {
    return "error " + std::to_string(n) + " (" + tool::form_name(tool::report_form(n)) + " form)";
}

void check_record(Session& s, const jwe_control_area& a, void* record, std::int32_t number, ReportForm form) {
    if (record != &jwe_lca.error_number) s.find("the handler got " + hex(&record, sizeof record) + ", not the record's address");
    // Until the handler corrects an operand the reports are the export's
    // own; a correction can take an inner operator where the export's own
    // tests never let it go (jwe_gddq's divisor corrected to zero reaches
    // g_aqdq's 280), and then any number of the library may follow.
    const std::span<const std::int32_t> allowed =
        s.corrections_made ? std::span<const std::int32_t>(every_number()) : s.listed;
    if (std::find(allowed.begin(), allowed.end(), number) == allowed.end())
        s.find("reported " + describe_number(number) + ", which " +
               (s.corrections_made ? "no row lists" : "the row does not list"));
    const long off = changed_outside(s.expected, a, form);
    if (off >= 0) s.find("a report of " + describe_number(number) + " wrote " + field_at(static_cast<std::size_t>(off)));
    if (a.retry_pointer != &jwe_lca.retry_word) s.find(describe_number(number) + ": 688 is not the retry word's address");
    if (a.cleared_720 || a.cleared_721 || a.cleared_724 || a.cleared_732 || a.cleared_736 || a.cleared_737 ||
        a.cleared_744)
        s.find(describe_number(number) + ": the fields 720..744 are not cleared");

    if (form == ReportForm::short_form) {
        if (std::find(s.short_seen.begin(), s.short_seen.end(), number) != s.short_seen.end())
            s.find(describe_number(number) + " reported twice in one call");
        s.short_seen.push_back(number);
        return;
    }
    s.saw_argument_report = true;
    if (form == ReportForm::full) {
        if (s.c->enabled != 1 || s.c->suppress != 0)
            s.find("the handler was called for " + describe_number(number) + " with 1250 = " +
                   std::to_string(s.c->enabled) + " and 588 = " + std::to_string(s.c->suppress));
        if (jwe_x_init != 2) s.find(describe_number(number) + " reached the handler before the core run-time was initialised");
    }
    if (a.first_operand == nullptr) s.find(describe_number(number) + ": no operand copy at 696");
    if (a.operand_count == 0) return;  // no descriptor written
    if (a.operand_count > 2 || (a.operand_count == 2 && a.second_operand == nullptr)) {
        s.find(describe_number(number) + ": operand count " + std::to_string(a.operand_count));
        return;
    }
    const OperandCopies copies = tool::operand_copies(a, s.kinds);
    for (std::uint32_t d = 0; d < a.operand_count; ++d) {
        const std::uint16_t type = d == 0 ? a.operand1_type : a.operand2_type;
        const std::uint16_t pad = d == 0 ? a.operand1_pad : a.operand2_pad;
        const void* shown = d == 0 ? a.operand1_value : a.operand2_value;
        const std::string which = describe_number(number) + ": descriptor " + std::to_string(d + 1);
        if (tool::kind_of_descriptor(type).empty()) s.find(which + " has type code " + std::to_string(type));
        if (pad != 0) s.find(which + " has a nonzero pad");
        if (shown == nullptr) {
            s.find(which + " has no value address");
            continue;
        }
        // A descriptor shows a copy of the operand whose modifiable copy
        // the report publishes: the same bits, before the handler acts.
        const int slot = a.operand_count == 2 ? static_cast<int>(d) : copies.kind[0].empty() ? 1 : 0;
        if (!copies.kind[slot].empty() && copies.at[slot] &&
            std::memcmp(shown, copies.at[slot], tool::significant_size(copies.kind[slot])) != 0)
            s.find(which + " does not show the operand copy it describes");
    }
}

void hostile_handler(void* record) {
    Session& s = *g_session;
    jwe_control_area& a = jwe_lca;
    const std::int32_t number = a.error_number;
    const ReportForm form = tool::report_form(number);
    const int index = static_cast<int>(s.numbers.size());
    s.numbers.push_back(number);
    if (index < kMaxReports) check_record(s, a, record, number, form);
    if (index > kMaxReports + kRunaway) {
        std::fprintf(stderr, "fuzz: %.*s keeps reporting (%s) after the handler turned IEEE results on and declined\n",
                     static_cast<int>(s.c->row->name.size()), s.c->row->name.data(), describe_number(number).c_str());
        std::abort();
    }

    std::uint8_t action = index < kMaxReports ? s.c->script[static_cast<std::size_t>(index) % 8] : 0;
    if (index >= kMaxReports) {
        // Every loop the protocol allows ends here.
        s.capped = true;
        a.ieee_results = 1;
    }
    int kind = action & 3;
    if ((kind == Action::retry || kind == Action::correct_retry) && ++s.retries > kMaxRetries) kind = Action::decline;

    if (kind == Action::correct_retry || kind == Action::correct_decline) {
        const OperandCopies copies = tool::operand_copies(a, s.kinds);
        const int which = (action >> 4) & 3;
        // Every copy must still be the argument it stands for, the one left
        // alone too: after a restart on |x| a corrected y retries on |x|.
        bool all_arguments = true;
        for (int slot = 0; slot < copies.count && slot < 2; ++slot)
            all_arguments = all_arguments && copies.at[slot] && !copies.kind[slot].empty() &&
                            slot < static_cast<int>(s.kinds.size()) &&
                            std::memcmp(s.final_args[slot].bytes, copies.at[slot],
                                        tool::significant_size(copies.kind[slot])) == 0;
        for (int slot = 0; slot < 2; ++slot) {
            if (which == 1 + (1 - slot)) continue;  // 1: first only, 2: second only
            if (!copies.at[slot] || copies.kind[slot].empty()) continue;
            const std::size_t width = tool::significant_size(copies.kind[slot]);
            // A retry on this correction is a call of the export on other
            // arguments when the report is the export's own and its
            // operands are the export's arguments: as many, of the same
            // kinds, with the same bits.  (A report of an inner REAL(16)
            // operator, or of a restart on -x, retries a step only.)
            const bool maps = own_number(*s.c->row, number) && !halves_retry_alone(*s.c->row) && copies.count == static_cast<int>(s.kinds.size()) &&
                              tool::descriptor_code(s.kinds[static_cast<std::size_t>(slot)]) ==
                                  tool::descriptor_code(copies.kind[slot]) &&
                              all_arguments;
            std::memcpy(copies.at[slot], s.chunk(), width);
            s.corrections_made = true;
            if (kind != Action::correct_retry) continue;
            if (maps) std::memcpy(s.final_args[slot].bytes, copies.at[slot], width);
            else s.unmappable = true;
            s.corrected = true;
        }
    }
    if (action & Action::scribble) {
        // The record belongs to the core run-time: the library reads
        // nothing of it but the retry word.
        auto* from = reinterpret_cast<unsigned char*>(&a.retry_pointer);
        auto* to = reinterpret_cast<unsigned char*>(&a.retry_word);
        for (unsigned char* p = from; p < to; p += 16)
            std::memcpy(p, s.chunk(), static_cast<std::size_t>(std::min<std::ptrdiff_t>(16, to - p)));
    }
    std::uint32_t word = 0;
    if (kind == Action::retry || kind == Action::correct_retry) {
        word = 1;
        if (action & 0x40) {
            std::memcpy(&word, s.chunk(), sizeof word);
            if (word == 0) word = 0x80000000u;
        }
    }
    a.retry_word = word;
    tool::forget_operands(a);
    s.expected = a;
}

}  // namespace

std::size_t operand_width(std::string_view kind) {
    if (kind == "anyreal") return 16;
    if (kind == "argblk") return 8;  // the seed of the case's generator
    return tool::significant_size(tool::value_kind(kind));
}

std::string unsupported(const Row& row) {
    for (std::string_view k : tool::split_kinds(row.args)) {
        if (k == "desc") return "a descriptor outside an argument block has no generator";
        if (k == "argblk" && !tool::is_matrix_export(row.name)) return "an argument block of unknown layout";
        if (k != "anyreal" && operand_width(k) == 0) return "argument kind " + std::string(k);
    }
    if (tool::split_kinds(row.args).size() > kMaxArguments) return "too many arguments";
    return "";
}

Harness::Harness() {
    for (const Row& row : exports::rows()) {
        if (!row.thunk) continue;
        const std::string why = unsupported(row);
        if (why.empty()) rows_.push_back(&row);
        else skipped_.emplace_back(&row, why);
    }
}

Harness::Harness(std::vector<const Row*> rows) : rows_(std::move(rows)) {}

Case Harness::decode(std::span<const std::uint8_t> in) const {
    std::size_t at = 0;
    auto byte = [&]() -> std::uint8_t { return at < in.size() ? in[at++] : (++at, 0); };
    Case c;
    const std::size_t n = byte();
    std::string name;
    for (std::size_t i = 0; i < n; ++i) name += static_cast<char>(byte());
    for (const Row* r : rows_)
        if (r->name == name) c.row = r;
    if (!c.row && !rows_.empty()) c.row = rows_[fnv1a(name) % rows_.size()];
    c.suppress = byte();
    c.ieee = byte();
    c.enabled = byte();
    c.mode = byte();
    for (auto& s : c.script) s = byte();
    if (c.row) {
        const auto& kinds = facts(*c.row).kinds;
        for (std::size_t k = 0; k < kinds.size(); ++k)
            for (std::size_t i = 0; i < operand_width(kinds[k]); ++i) c.args[k].bytes[i] = byte();
    }
    if (at < in.size()) c.stream.assign(in.begin() + static_cast<std::ptrdiff_t>(at), in.end());
    return c;
}

std::vector<std::uint8_t> Harness::encode(const Case& c) {
    std::vector<std::uint8_t> out;
    out.reserve(64 + c.stream.size());
    out.push_back(static_cast<std::uint8_t>(c.row->name.size()));
    for (char ch : c.row->name) out.push_back(static_cast<std::uint8_t>(ch));
    for (std::uint8_t b : {c.suppress, c.ieee, c.enabled, c.mode}) out.push_back(b);
    out.insert(out.end(), c.script.begin(), c.script.end());
    const auto& kinds = facts(*c.row).kinds;
    for (std::size_t k = 0; k < kinds.size(); ++k)
        out.insert(out.end(), c.args[k].bytes, c.args[k].bytes + operand_width(kinds[k]));
    out.insert(out.end(), c.stream.begin(), c.stream.end());
    return out;
}

namespace {

struct Outcome {
    unsigned char result[32] = {};
    std::size_t size = 0;
    std::vector<std::int32_t> numbers;
    bool capped = false;
    bool saw_argument_report = false;
    bool corrected = false, unmappable = false;
    Value final_args[kMaxArguments] = {};
};

// The result area with guard bytes on both sides.
struct Guarded {
    alignas(16) unsigned char before[16];
    Value value;
    unsigned char after[16];
};

}  // namespace

// ---- the matrix exports' arena ------------------------------------------------
//
// A matrix export's argument is an 8-byte seed from which the shared
// generator builds a hostile argument block in this arena, with kGapBytes
// of guard pattern after every allocation.  After the call every byte of
// the data part but the result's elements and cells (as the descriptors
// name them) must hold what it held before, the descriptors and the block
// too; under ASan everything but the allocations is poisoned as well, so
// a read outside the operands is a finding.  The outcome is a digest of
// the data part, which holds no address.
//
// That digest is the input's alone only if every byte of the data part
// outside the case's allocations holds the guard pattern when the export
// is called, whatever earlier cases did.  Each Harness has its own arena,
// so that nothing carries over from one Harness to the next either.
constexpr std::size_t kArenaData = std::size_t{1} << 18, kArenaPointers = 2048, kGapBytes = 32;
// How far past the case's last allocation stray writes are looked for.
constexpr std::size_t kTailChecked = 4096;

struct MatrixArena {
    alignas(64) unsigned char data[kArenaData];
    alignas(64) unsigned char pointers[kArenaPointers];
    // Every byte of `data` from here on holds the guard pattern: the
    // generator's writes outside a case are put back at once, and this
    // mark covers the bytes checked after each call (an export's write
    // beyond those would be a finding under ASan, which poisons them).
    std::size_t dirty = 0;
    MatrixArena() { std::memset(data, kGuardByte, sizeof data); }
};

Harness::~Harness() = default;
Harness::Harness(Harness&&) noexcept = default;
Harness& Harness::operator=(Harness&&) noexcept = default;

MatrixArena& Harness::matrix_arena() {
    if (!arena_) arena_ = std::make_unique<MatrixArena>();
    return *arena_;
}

namespace {

std::string where_in(const tool::MatrixLayout& layout, std::size_t at) {
    const tool::MatrixArea* before = nullptr;
    for (const tool::MatrixArea& a : layout.areas) {
        if (at >= a.begin && at < a.end)
            return std::string(a.what) + " (byte " + std::to_string(at - a.begin) + " of " +
                   std::to_string(a.end - a.begin) + ")";
        if (a.end <= at && (!before || a.end > before->end)) before = &a;
    }
    return before ? "the guard bytes " + std::to_string(at - before->end) + " after " + before->what
                  : "the guard bytes before every allocation";
}

struct MatrixCheck {
    tool::MatrixLayout layout;
    std::vector<unsigned char> data_before, pointers_before, block;
    std::size_t checked = 0;
};

// Builds the case in the arena; false (with a finding) when it cannot.
bool prepare_matrix(MatrixArena& a, const Row& row, const Value& seed, Value* args, MatrixCheck& m,
                    std::vector<std::string>& findings) {
    std::memset(a.data, kGuardByte, a.dirty);
    std::uint64_t state;
    std::memcpy(&state, seed.bytes, sizeof state);
    const tool::MatrixArena parts{a.data, kArenaData, a.pointers, kArenaPointers};
    const bool built = tool::build_hostile_matrix_case(row, state, args, kMaxArguments, parts, kGapBytes, m.layout);
    // A draw the generator abandons (it did not fit) has written where the
    // case it keeps has gaps, and can reach far beyond it.  Left there,
    // those bytes would be digested by a later, larger case on its first
    // call and gone on its second (which resets more of the arena): two
    // results from one input.  Everything but the allocations gets the
    // guard pattern back.
    std::size_t at = 0;
    if (built) {
        std::vector<tool::MatrixArea> areas = m.layout.areas;
        std::sort(areas.begin(), areas.end(), [](const auto& x, const auto& y) { return x.begin < y.begin; });
        for (const tool::MatrixArea& area : areas) {
            if (area.begin > at) std::memset(a.data + at, kGuardByte, area.begin - at);
            at = std::max(at, area.end);
        }
    }
    if (m.layout.data_touched > at) std::memset(a.data + at, kGuardByte, m.layout.data_touched - at);
    if (!built) {
        findings.push_back("no argument block could be built");
        return false;
    }
    m.checked = std::min(kArenaData, m.layout.data_used + kTailChecked);
    a.dirty = std::max(a.dirty, m.checked);
    m.data_before.assign(a.data, a.data + m.checked);
    m.pointers_before.assign(a.pointers, a.pointers + kArenaPointers);
    const auto* b = reinterpret_cast<const unsigned char*>(args);
    m.block.assign(b, b + m.layout.block_size);
    poison(a.data, kArenaData);
    for (const tool::MatrixArea& area : m.layout.areas) unpoison(a.data + area.begin, area.end - area.begin);
    return true;
}

// The checks after the call; the digest of the data part goes to `result`.
void check_matrix(MatrixArena& a, const MatrixCheck& m, const Value* args, unsigned char* result,
                  std::vector<std::string>& findings) {
    unpoison(a.data, kArenaData);
    std::vector<bool> may(m.checked, false);
    for (const tool::MatrixArea& w : m.layout.writable)
        for (std::size_t i = w.begin; i < w.end && i < m.checked; ++i) may[i] = true;
    for (std::size_t i = 0; i < m.checked; ++i)
        if (a.data[i] != m.data_before[i] && !may[i]) {
            findings.push_back("wrote " + where_in(m.layout, i) + ", outside the result's elements");
            break;
        }
    if (std::memcmp(a.pointers, m.pointers_before.data(), kArenaPointers) != 0)
        findings.push_back("a descriptor or a cell address was written");
    if (std::memcmp(args, m.block.data(), m.block.size()) != 0) findings.push_back("the argument block was written");
    const std::uint64_t digest = fnv1a(std::string_view(reinterpret_cast<const char*>(a.data), m.layout.data_used));
    std::memcpy(result, &digest, sizeof digest);
}

// One call of the case's export under the case's flags and handler, with
// the checks that need no second call.  `alias` is the argument that also
// serves as the result area, or -1.
Outcome call(const Case& c, int alias, MatrixArena* arena, Stats& stats, std::vector<std::string>& findings) {
    const Row& row = *c.row;
    Session s;
    s.c = &c;
    s.kinds = facts(row).kinds;
    s.listed = facts(row).listed;
    s.findings = &findings;
    std::copy(std::begin(c.args), std::end(c.args), std::begin(s.final_args));

    jwe_control_area saved;
    std::memcpy(&saved, &jwe_lca, sizeof saved);
    jwe_control_area& a = jwe_lca;
    const bool handler = !(c.mode & Mode::no_handler);
    a.suppress = c.suppress;
    // With no handler nothing could end the restarts that IEEE results
    // off allow on purpose (a NaN logarithm restarts on -NaN forever).
    a.ieee_results = handler ? c.ieee : 1;
    a.handler_enabled = c.enabled;
    a.handler = handler ? &hostile_handler : nullptr;
    a.retry_word = (c.mode & Mode::stale_retry) ? 1u : 0u;
    tool::forget_operands(a);
    a.operand1_value = a.operand2_value = nullptr;
    // Without a handler the core run-time's initialisation would install
    // its own; the harness keeps the core initialised then.
    if (!handler) jwe_x_init = 2;
    else if (c.mode & Mode::uninitialised) jwe_x_init = 0;
    const std::int32_t x_init_before = jwe_x_init;
    s.xint_calls_at_start = mivori_xint_call_count();
    s.expected = a;
    const jwe_control_area start = a;

    Value args[kMaxArguments];
    std::copy(std::begin(c.args), std::end(c.args), std::begin(args));
    Guarded guarded;
    std::memset(&guarded, kGuardByte, sizeof guarded);
    const bool matrix = facts(row).matrix;
    const std::size_t result_size = matrix ? sizeof(std::uint64_t) : tool::significant_size(row.result);
    const bool pointer_result = through_pointer(row.result);

    MatrixCheck m;
    if (matrix) {
        if (!prepare_matrix(*arena, row, c.args[0], args, m, findings)) {
            std::memcpy(&jwe_lca, &saved, sizeof saved);
            return Outcome{};
        }
        auto* slots = reinterpret_cast<unsigned char*>(args);
        poison(slots + m.layout.block_size, sizeof args - m.layout.block_size);
    } else {
        for (std::size_t k = 0; k < s.kinds.size(); ++k) {
            const std::size_t w = readable_width(s.kinds, args, k);
            poison(args[k].bytes + w, sizeof(Value) - w);
        }
    }
    if (pointer_result && alias < 0) poison(guarded.value.bytes + result_size, sizeof(Value) - result_size);

    g_session = &s;
    row.thunk(args, alias >= 0 ? args[alias] : guarded.value);
    g_session = nullptr;
    ++stats.calls;
    stats.reports += s.numbers.size();

    for (auto& v : args) unpoison(&v, sizeof v);
    unpoison(&guarded, sizeof guarded);

    Outcome o;
    o.size = result_size;
    if (matrix)
        check_matrix(*arena, m, args, o.result, findings);
    else
        std::memcpy(o.result, alias >= 0 ? args[alias].bytes : guarded.value.bytes, result_size);
    o.numbers = s.numbers;
    o.capped = s.capped;
    o.saw_argument_report = s.saw_argument_report;
    o.corrected = s.corrected;
    o.unmappable = s.unmappable;
    std::copy(std::begin(s.final_args), std::end(s.final_args), std::begin(o.final_args));

    for (std::size_t k = 0; k < s.kinds.size(); ++k) {
        if (!by_address(s.kinds[k]) || static_cast<int>(k) == alias || matrix) continue;
        const std::size_t w = operand_width(s.kinds[k]);
        if (std::memcmp(args[k].bytes, c.args[k].bytes, w) != 0)
            findings.push_back("argument " + std::to_string(k + 1) + " was written: " + hex(c.args[k].bytes, w) +
                               " became " + hex(args[k].bytes, w));
    }
    auto intact = [](const unsigned char* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i)
            if (p[i] != kGuardByte) return false;
        return true;
    };
    if (alias < 0) {
        if (!intact(guarded.before, sizeof guarded.before)) findings.push_back("written before the result area");
        if (!intact(guarded.after, sizeof guarded.after)) findings.push_back("written after the result area");
        if (pointer_result && !intact(guarded.value.bytes + result_size, sizeof(Value) - result_size))
            findings.push_back("the result area written beyond its " + std::to_string(result_size) + " bytes");
    }

    if (handler) {
        if (std::memcmp(&a, &s.expected, sizeof a) != 0) {
            const long off = changed_outside(s.expected, a, ReportForm::short_form);
            findings.push_back("the control area was written after the last handler call returned (" +
                               field_at(static_cast<std::size_t>(off < 0 ? 0 : off)) + ")");
        }
    } else {
        // No handler: nothing shows which reports were made, but nothing
        // outside the record may change, the retry word included.
        const long off = changed_outside(start, a, ReportForm::full);
        if (off >= 0) findings.push_back("with no handler, " + field_at(static_cast<std::size_t>(off)) + " was written");
    }
    const std::int32_t xint_calls = mivori_xint_call_count() - s.xint_calls_at_start;
    if (xint_calls > 1) findings.push_back("the core run-time was initialised " + std::to_string(xint_calls) + " times");
    if (xint_calls == 1) {
        const std::int32_t* block = mivori_xint_last_block();
        if (x_init_before != 0) findings.push_back("the core run-time was initialised again");
        if (jwe_x_init != 2) findings.push_back("jwe_x_init is " + std::to_string(jwe_x_init) + " after initialisation");
        if (block[0] || block[1] || block[2]) findings.push_back("jwe_xint did not get three zero words");
        bool full_listed = false;
        for (std::int32_t n : s.listed) full_listed = full_listed || tool::report_form(n) == ReportForm::full;
        if (!full_listed) findings.push_back("initialised the core run-time without a full-form error to report");
    }
    const std::int32_t x_init_after = jwe_x_init;
    std::memcpy(&jwe_lca, &saved, sizeof saved);
    jwe_x_init = x_init_after;
    return o;
}

std::string show_result(const Row& row, const unsigned char* bytes) {
    if (facts(row).matrix) return "arena digest " + hex(bytes, sizeof(std::uint64_t));
    Value v{};
    std::memcpy(v.bytes, bytes, tool::significant_size(row.result));
    return tool::format_value(row.result, v);
}

std::string show_numbers(const std::vector<std::int32_t>& n) {
    std::string s = "[";
    for (std::size_t i = 0; i < n.size() && i < 6; ++i) {
        if (i) s += ' ';
        s += std::to_string(n[i]);
    }
    if (n.size() > 6) s += " ... (" + std::to_string(n.size()) + ")";
    return s + "]";
}

}  // namespace

std::vector<std::string> Harness::run(std::span<const std::uint8_t> input) { return run(decode(input)); }

std::vector<std::string> Harness::run(const Case& c) {
    std::vector<std::string> findings;
    if (!c.row) return findings;
    ++stats_.inputs;
    const Row& row = *c.row;
    MatrixArena* arena = facts(row).matrix ? &matrix_arena() : nullptr;
    const Outcome first = call(c, -1, arena, stats_, findings);
    if (first.capped) ++stats_.capped;
    auto differs = [&](const Outcome& o) { return std::memcmp(o.result, first.result, first.size) != 0; };

    // The same input again; byte 589 flipped when no report could read it
    // (only short-form reports, and a full-form report would have shown).
    Case again = c;
    const bool flags_open = c.enabled == 1 && c.suppress == 0 && !(c.mode & Mode::no_handler);
    if (!first.saw_argument_report && flags_open) again.ieee = c.ieee == 1 ? 0 : 1;
    const Outcome second = call(again, -1, arena, stats_, findings);
    if (differs(second) || second.numbers != first.numbers)
        findings.push_back("not deterministic" + std::string(again.ieee != c.ieee ? " (589 flipped, read by no report)" : "") +
                           ": " + show_result(row, first.result) + " " + show_numbers(first.numbers) + ", then " +
                           show_result(row, second.result) + " " + show_numbers(second.numbers));

    // The direct and short forms test no flag: with 1250 or 588 closed, a
    // call whose twin with open flags reports only in those forms makes
    // the same reports to the same end.
    if (!flags_open && !(c.mode & Mode::no_handler)) {
        Case open = c;
        open.enabled = 1;
        open.suppress = 0;
        const Outcome o = call(open, -1, arena, stats_, findings);
        bool full = false;
        for (std::int32_t n : o.numbers) full = full || tool::report_form(n) == ReportForm::full;
        if (!full && !o.capped && (differs(o) || o.numbers != first.numbers))
            findings.push_back("with 1250 = " + std::to_string(c.enabled) + " and 588 = " + std::to_string(c.suppress) +
                               ": " + show_result(row, first.result) + " " + show_numbers(first.numbers) +
                               "; with them open, direct and short reports only: " + show_result(row, o.result) + " " +
                               show_numbers(o.numbers));
    }

    // A fresh call with the operands the handler left, declining every
    // report: a retry runs the whole operation again on the corrections.
    if (!first.capped && !first.unmappable && !(c.mode & Mode::no_handler) && !first.numbers.empty()) {
        Case fresh = c;
        std::copy(std::begin(first.final_args), std::end(first.final_args), std::begin(fresh.args));
        fresh.script = {};
        fresh.mode &= static_cast<std::uint8_t>(~Mode::aliased);
        const Outcome f = call(fresh, -1, arena, stats_, findings);
        ++stats_.fresh_checks;
        if (!f.capped && std::memcmp(f.result, first.result, first.size) != 0)
            findings.push_back(std::string(first.corrected ? "after the handler's corrections" : "after plain retries") +
                               " the result is " + show_result(row, first.result) + ", a fresh call on those operands gives " +
                               show_result(row, f.result));
    }

    // The result area on an operand of the result's kind.
    if (c.mode & Mode::aliased) {
        const auto& kinds = facts(row).kinds;
        for (std::size_t k = 0; k < kinds.size(); ++k) {
            if (!through_pointer(row.result) || kinds[k] != row.result) continue;
            const Outcome o = call(c, static_cast<int>(k), arena, stats_, findings);
            ++stats_.alias_checks;
            if (differs(o) || o.numbers != first.numbers)
                findings.push_back("with the result area on argument " + std::to_string(k + 1) + ": " +
                                   show_result(row, o.result) + " " + show_numbers(o.numbers) + ", not " +
                                   show_result(row, first.result) + " " + show_numbers(first.numbers));
            break;
        }
    }
    for (std::string& f : findings) f = std::string(row.name) + ": " + f;
    return findings;
}

}  // namespace mivor::fuzz
