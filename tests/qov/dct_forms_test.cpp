// What holds for every form of the DCT and of quantisation alike: equal bytes at all levels, nothing touched
// outside the arguments, any address, no floating-point flags, statuses.
#include "dct_forms.h"

#include <cmath>

namespace {

// One call at odd addresses. `src` and `table` end with their last element, so that the address sanitizer
// sees a read past it.
struct Call {
    std::vector<unsigned char> src, table;
    int srcOffset, tableOffset, dstOffset;
    int srcStep, dstStep;
};

// The source ends there even if its last row is shorter than a step.
size_t spanBytes(const Side& side, int step)
{
    return size_t(step) * (side.rows - 1) + side.rowBytes();
}

Ints randomValues(Random& random, Element e, int middle)
{
    Ints values;
    const int amplitudes[] = {1, 9, 127, 128, 130, 1500, 2100, 40000};
    const int amplitude = amplitudes[random.in(0, 7)], kind = random.in(0, 6);
    const int place = random.in(0, 63), sign = random.oneIn(2) ? 1 : -1;
    for (int i = 0; i < 64; i++) {
        int v = 0;
        switch (kind) {
        case 0: v = random.value<Qov16s>(); break;
        case 1: v = random.in(-amplitude, amplitude); break;
        case 2: v = (i + i / 8) % 2 ? 40000 : -40000; break; // a chess board
        case 3: v = random.oneIn(2) ? 70000 : -70000; break;
        case 4: v = i == place ? sign * amplitude : 0; break;
        case 5: v = i == 0 ? random.in(-amplitude, amplitude) : 0; break;
        case 6: v = random.oneIn(8) ? random.in(-amplitude, amplitude) : 0; break;
        }
        values[i] = std::clamp(v + middle, lowest(e), largest(e));
    }
    return values;
}

Ints randomSteps(Random& random)
{
    const int kind = random.in(0, 3);
    Ints steps;
    for (int& s : steps)
        s = kind == 0   ? 1
            : kind == 1 ? random.in(1, 255)
            : kind == 2 ? random.in(1, 65535)
                        : random.value<Qov16u>();
    return steps;
}

// Numbers that are no steps: what may make arithmetic raise a flag.
void addWildSteps(Random& random, void* table)
{
    const float wild[] = {0.0f,    -0.0f, 1e-42f, 1e-38f,   1e-6f, 0.3f,      1.5f, 1e6f,
                          3.4e38f, -1.0f, -3e38f, INFINITY, NAN,   -INFINITY, -NAN};
    for (int k = random.in(1, 20); k > 0; k--)
        std::memcpy(static_cast<char*>(table) + 4 * random.in(0, 63), &wild[random.in(0, 14)], 4);
}

Call makeCall(Random& random, const Form& form, const Ints& values, const Ints& steps)
{
    auto stepOf = [&](const Side& side) {
        return side.rowBytes() + (random.oneIn(3) ? 0 : bytesOf(side.element) * random.in(0, 40));
    };
    auto offsetOf = [&](Element e) { return bytesOf(e) * random.in(0, 63 / bytesOf(e)); };
    Call c;
    c.srcStep = stepOf(form.src);
    c.dstStep = stepOf(form.dst);
    c.srcOffset = offsetOf(form.src.element);
    c.dstOffset = offsetOf(form.dst.element);
    c.tableOffset = offsetOf(form.table);

    unsigned char packed[128];
    pack(form.src.element, values, packed);
    c.src.resize(c.srcOffset + spanBytes(form.src, c.srcStep), 0x5A);
    for (int y = 0; y < form.src.rows; y++)
        std::memcpy(c.src.data() + c.srcOffset + y * c.srcStep, packed + y * form.src.rowBytes(),
                    form.src.rowBytes());
    c.table.resize(c.tableOffset + 64 * bytesOf(form.table));
    pack(form.table, steps, c.table.data() + c.tableOffset);
    return c;
}

// What the destination rows hold afterwards.
std::vector<unsigned char> outcome(const Form& form, const Call& c)
{
    Guarded dst(spanBytes(form.dst, c.dstStep), c.dstOffset);
    if (form.inPlace) std::memcpy(dst.as<char>(), c.src.data() + c.srcOffset, form.dst.rowBytes());
    const auto srcBefore = c.src, tableBefore = c.table;

    FloatFlags::clear();
    const QovStatus status = form.call(c.src.data() + c.srcOffset, c.srcStep, dst.as<void>(), c.dstStep,
                                       c.table.data() + c.tableOffset);
    const unsigned flags = FloatFlags::raised();

    EXPECT_EQ(qovStsNoErr, status);
    EXPECT_EQ(0u, flags) << "floating-point flags";
    EXPECT_TRUE(dst.intact(c.dstStep, form.dst.rowBytes())) << "written outside";
    EXPECT_TRUE(srcBefore == c.src && tableBefore == c.table) << "source or table changed";
    std::vector<unsigned char> rows;
    for (int y = 0; y < form.dst.rows; y++) {
        const unsigned char* row = dst.as<unsigned char>() + y * c.dstStep;
        rows.insert(rows.end(), row, row + form.dst.rowBytes());
    }
    return rows;
}

std::string firstOf(const std::vector<unsigned char>& bytes, const std::vector<unsigned char>& other)
{
    const size_t at = std::mismatch(bytes.begin(), bytes.end(), other.begin()).first - bytes.begin();
    return "byte " + std::to_string(at) + ": " + std::to_string(bytes[at]) + ", " + std::to_string(other[at]);
}

// Each call at every level, against what the first level, px, made of it.
void compareLevels(const Form& form, const std::vector<Call>& calls)
{
    std::vector<std::vector<unsigned char>> want;
    forEachLevel([&] {
        const bool first = want.empty();
        for (size_t i = 0; i < calls.size(); i++) {
            const auto got = outcome(form, calls[i]);
            if (first)
                want.push_back(got);
            else if (want[i] != got)
                FAIL() << "call " << i << ", " << firstOf(want[i], got);
            ASSERT_FALSE(testing::Test::HasNonfatalFailure()) << "call " << i;
        }
    });
}

TEST(DctForms, LevelsAreEqual)
{
    Random random;
    for (const Form& form : allForms()) {
        SCOPED_TRACE(form.name);
        std::vector<Call> calls;
        for (int n = 0; n < 2500; n++) {
            const int middle = form.forward ? form.shift : 0;
            calls.push_back(
                makeCall(random, form, randomValues(random, form.src.element, middle), randomSteps(random)));
            if (form.table == Element::f32 && random.oneIn(2))
                addWildSteps(random, calls.back().table.data() + calls.back().tableOffset);
        }
        compareLevels(form, calls);
    }
}

// DC over the range of 8-bit pictures and beyond, and a little more beside it. Catches levels that choose
// between two ways of calculation at different magnitudes.
TEST(DctForms, LevelsAreEqualAtEveryMagnitude)
{
    Random random;
    for (const Form& form : inverseForms()) {
        SCOPED_TRACE(form.name);
        std::vector<Call> calls;
        for (int dc = -2200; dc <= 2200; dc++) {
            Ints values = {}, steps;
            values[0] = dc;
            values[random.oneIn(2) ? 1 : random.in(2, 63)] = random.in(-3, 3);
            steps.fill(1);
            calls.push_back(makeCall(random, form, values, steps));
        }
        compareLevels(form, calls);
    }
}

// Neighbours in the lists.
TEST(DctForms, InPlaceEqualsOutOfPlace)
{
    Random random;
    for (const auto* list : {&forwardForms(), &inverseForms()})
        for (size_t i = 1; i < list->size(); i++) {
            const Form &apart = (*list)[i - 1], &inPlace = (*list)[i];
            if (!inPlace.inPlace) continue;
            SCOPED_TRACE(inPlace.name);
            std::vector<Call> calls;
            for (int n = 0; n < 500; n++)
                calls.push_back(
                    makeCall(random, inPlace, randomValues(random, Element::s16, 0), randomSteps(random)));
            forEachLevel([&] {
                for (const Call& c : calls) ASSERT_EQ(outcome(apart, c), outcome(inPlace, c));
            });
        }
}

// A coefficient of 0 is 0 whatever its step is: the step does not even choose another way of calculation.
TEST(DctForms, StepsOfZerosDoNotMatter)
{
    struct Twins {
        Ints in, steps, otherSteps;
    };
    Random random;
    for (const Form& form : inverseForms()) {
        std::vector<Twins> list;
        for (int n = 0; n < 2000; n++) {
            Twins t;
            const int amplitude = random.oneIn(4) ? 32767 : 1 << random.in(0, 12);
            const int corner = 1 << random.in(0, 3), sparse = random.in(1, 4);
            for (int i = 0; i < 64; i++) {
                const bool zero = i / 8 >= corner || i % 8 >= corner || !random.oneIn(sparse);
                t.in[i] = zero ? 0 : random.in(-amplitude, amplitude);
                t.steps[i] = random.oneIn(4) ? random.value<Qov16u>() : random.in(1, 40);
                t.otherSteps[i] = t.in[i] ? t.steps[i] : random.value<Qov16u>();
            }
            list.push_back(t);
        }
        forEachLevel([&] {
            for (const Twins& t : list)
                ASSERT_EQ(run(form, t.in, t.steps), run(form, t.in, t.otherSteps))
                    << form.name << ": the coefficients " << testing::PrintToString(t.in)
                    << " with the steps " << testing::PrintToString(t.otherSteps);
        });
    }
}

// Every set of null pointers, with good and with bad steps; steps around the length of a row.
TEST(DctForms, Statuses)
{
    for (const Form& form : allForms()) {
        SCOPED_TRACE(form.name);
        Random random;
        Call c = makeCall(random, form, Ints{}, randomSteps(random));
        std::vector<Qov64u> dst(64);
        const int srcRow = form.src.rowBytes(), dstRow = form.dst.rowBytes();
        auto call = [&](int nulls, int srcStep, int dstStep) {
            c.src.resize(2000);
            return form.call(nulls & 1 ? nullptr : c.src.data() + c.srcOffset, srcStep,
                             nulls & 2 ? nullptr : dst.data(), dstStep,
                             nulls & 4 ? nullptr : c.table.data() + c.tableOffset);
        };
        const int pointers = (form.inPlace ? 0 : 1) | 2 | (form.table == Element::none ? 0 : 4);
        for (int nulls = 1; nulls < 8; nulls++) {
            if (nulls & ~pointers) continue;
            EXPECT_EQ(qovStsNullPtr, call(nulls, srcRow, dstRow)) << "null pointers " << nulls;
            EXPECT_EQ(qovStsNullPtr, call(nulls, 0, 0)) << "null pointers " << nulls << ", no steps";
        }
        for (const int shorter : {0, 1, 1000}) {
            const QovStatus status = shorter ? qovStsStep : qovStsNoErr;
            const bool fromImage = form.src.rows > 1;
            if (!fromImage && form.dst.rows == 1) continue;
            EXPECT_EQ(status, call(0, srcRow - (fromImage ? shorter : 0), dstRow - (fromImage ? 0 : shorter)))
                << "short by " << shorter;
        }
    }
}

} // namespace
