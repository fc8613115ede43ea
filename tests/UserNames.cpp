// A program that takes the library's whole namespace in keeps short names of its own: the library
// puts none of its inner ones there.
#include <ORLFoundation/ORLFoundation.h>

#include <type_traits>

using namespace ORLFoundation;

struct Amount {};
struct Balance {};
struct Date {};
struct Document {};
struct Field {};
struct Index {};
struct Instant {
  int seconds = 0;
};
struct Interval {};
struct Link {};
struct Month {};
struct Node {};
struct Options {};
struct Period {};
struct Plan {};
struct Record {};
struct Replaceable {};
struct Row {};
struct Series {};
struct Table {};
struct Text {};
struct Token {};
struct Wide {};
struct Window {};
struct Zone {};

template <class... Names>
constexpr bool areMine = (std::is_empty_v<Names> && ...);
static_assert(areMine<Amount, Balance, Date, Document, Field, Index, Interval, Link, Month, Node,
                      Options, Period, Plan, Record, Replaceable, Row, Series, Table, Text, Token,
                      Wide, Window, Zone>);

constexpr int boxed(int value) { return value + 1; }
constexpr int rounded(int value) { return value + 2; }
constexpr int isSet(int value) { return value + 3; }
constexpr int isDigit(int value) { return value + 4; }
static_assert(boxed(0) + rounded(0) + isSet(0) + isDigit(0) == 10);
static_assert(Instant{7}.seconds == 7);
static_assert(NSDate().timeIntervalSinceReferenceDate() == 0);
