#include "check/text/finding_codes.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <vector>

#include "base/nearest_word.h"

namespace {

// Tests play the texts behind "Wrong:" and "Right:".
constexpr FindingCode CODES[] = {
    {"always-true", GROUP_PROVED, LEVEL_WARNING, "a condition holds in every situation",
     R"(A condition is true whatever the parameters hold, in all variants that were
asked for. So it decides nothing: what it governs applies always, and a ctrlRO
makes the parameter read-only for good; so do several of which one always holds.
Mostly a comparison is the wrong way round, or a bound is not the one that was
meant.

Wrong:
    speed rw { rangeValid { 0..9 } default { 0 } }
    trim rw { rangeValid { 0..9 } default { 0 } ctrlRO (speed < 10) }
Right:
    speed rw { rangeValid { 0..9 } default { 0 } }
    trim rw { rangeValid { 0..9 } default { 0 } ctrlRO (speed < 5) }
)"},
    {"ambiguous-translation", GROUP_BUILDER, LEVEL_ERROR, "one source is translated to two targets",
     R"(Two valueChange statements of one parameter translate the same value to
different targets. The device cannot do both, and the daemon refuses the text.

Wrong:
    freeze rw {
      rangeValid { 0..2 }
      valueChange { "on" -> 1 }
      valueChange { "on" -> 2 }
    }
Right:
    freeze rw {
      rangeValid { 0..2 }
      valueChange { "on" -> 1 }
      valueChange { "hold" -> 2 }
    }
)"},
    {"comment-after-code", GROUP_READING, LEVEL_ERROR,
     "a \"#\" behind code, where no comment can be",
     R"(A comment is a line whose first character other than white space is "#". Behind
code a "#" has no special meaning, so the words of the comment are read as part
of the definition, and the daemon refuses the text.

Wrong:
    gain rw { rangeValid { 0..9 } }  # in decibel
Right:
    # In decibel.
    gain rw { rangeValid { 0..9 } }
)"},
    {"conflicting-conditions", GROUP_BUILDER, LEVEL_ERROR,
     "of two conditions one always holds, one never",
     R"(Of two ctrlRO statements, or two ctrlValid statements, one is constantly true
and the other constantly not. They cannot both be meant, and the daemon refuses
the text.

Wrong:
    gain rw { rangeValid { 0..9 } ctrlRO (0) ctrlRO (1) }
Right:
    gain rw { rangeValid { 0..9 } ctrlRO (1) }
)"},
    {"constant-condition", GROUP_BUILDER, LEVEL_WARNING,
     "a condition is 0, whatever the device does",
     R"(The condition of a range or a default, or a ctrlValid, is found to be 0 when the
text is read, and no constant of the command line makes it so. What it governs
never applies. On a range statement the daemon does not start.

Wrong:
    gain rw { default (1 > 2) { 5 } default { 7 } }
Right:
    gain rw { default { 7 } }
)"},
    {"cycle", GROUP_BUILDER, LEVEL_ERROR, "parameters that depend on one another in a ring",
     R"(Each parameter of the ring names the next one in a range, a default or a
condition, and the last one names the first. No order exists in which a commit
could judge them, and the daemon refuses the text. Two parameters may name each
other; three or more may not.

Wrong:
    a rw { rangeValid { 0..(b) } }
    b rw { rangeValid { 0..(c) } }
    c rw { rangeValid { 0..(a) } }
Right:
    a rw { rangeValid { 0..(b) } }
    b rw { rangeValid { 0..(c) } }
    c rw { rangeValid { 1..9 } default { 9 } }
)"},
    {"dead-comparison", GROUP_PROVED, LEVEL_WARNING, "a comparison with what is never there",
     R"(One side of a comparison can never be equal to the other, or is always less, or
a number is compared with a text. Or the comparisons in a part of a condition
are never true together, or one of them always is. Mostly a word is misspelt, or
the range has changed and the condition has not.

Wrong:
    mode rw { rangeValid { "film", "video", "still" } default { "film" } }
    gain rw { rangeValid { 0..9 } ctrlRO (mode == "still" || mode == "flim") }
Right:
    mode rw { rangeValid { "film", "video", "still" } default { "film" } }
    gain rw { rangeValid { 0..9 } ctrlRO (mode == "still" || mode == "film") }
)"},
    {"default-outside", GROUP_PROVED, LEVEL_ERROR, "a default that no situation keeps",
     R"(The value of a default is outside the range wherever the default applies, or
does not survive the start of the device, when everything is reset. The value is
corrected, so a reset gives another one than the text says.

Wrong:
    gain rw { rangeValid { 0..9 } default { 10 } }
Right:
    gain rw { rangeValid { 0..10 } default { 10 } }
)"},
    {"disjoint", GROUP_PROVED, LEVEL_ERROR, "ranges that refuse each other's values",
     R"(A range without a condition counts always, beside one with a condition, too. It
allows nothing that the other one refuses, and the other way round. A value of
the one range that the other corrects to what the first refuses lets its commit
fail; with no value in common, all do. So does the empty value, until something
is set, where neither range takes it: a default helps. These are errors. It is a
warning where only some values of the range with a condition can never be set.
Limits that change need a condition each.

Wrong:
    mode rw { rangeValid { 0..1 } default { 0 } }
    gain rw {
      rangeValid { 0..9 }
      rangeValid (mode == 1) { 20..29 }
      rangeValid (mode == 0) { 0..9 }
      default { 0 }
    }
Right:
    mode rw { rangeValid { 0..1 } default { 0 } }
    gain rw {
      rangeValid (mode == 1) { 20..29 }
      rangeValid (mode == 0) { 0..9 }
      default { 0 }
    }
)"},
    {"doc-outside", GROUP_STATIC, LEVEL_WARNING, "rangeDoc offers what rangeValid refuses",
     R"(A menu that follows the range query offers a value that the device corrects or
refuses when it is chosen.

Wrong:
    height rw { rangeValid { 8..128 } rangeDoc { 16, 32, 256 } default { 16 } }
Right:
    height rw { rangeValid { 8..256 } rangeDoc { 16, 32, 256 } default { 16 } }
)"},
    {"empty-range", GROUP_PROVED, LEVEL_ERROR, "a range without a value in some situation",
     R"(In the situation named, the lower end of a span is above its upper end, or the
range has no item. Such a range cannot be used: values outside are then
accepted, and a query for the range fails. Of a rangeDoc it is the query alone;
without an item it answers that there is no value, which is a warning.

Wrong:
    limit rw { rangeValid { 0..99 } default { 50 } }
    gain rw { rangeValid { 0..(limit - 10) } default { 0 } }
Right:
    limit rw { rangeValid { 10..99 } default { 50 } }
    gain rw { rangeValid { 0..(limit - 10) } default { 0 } }
)"},
    {"empty-text", GROUP_STATIC, LEVEL_WARNING, "a comparison with \"\", which no value equals",
     R"(The empty value of a parameter reads as the number 0, which equals 0 and never
equals "". So == "" is never true, and != "" always is. Compare with 0.

Wrong:
    title rw { }
    named ro { rangeValid { (title != "") } }
Right:
    title rw { }
    named ro { rangeValid { (title != 0) } }
)"},
    {"foreign-index", GROUP_STATIC, LEVEL_WARNING, "a name that means no instance and reads as 0",
     R"(A parameter with an index is named without brackets where its index is not
shared. So no instance is meant, the value is always empty, and the empty value
reads as 0. Name an instance in brackets, or give the parameter the same index.

Wrong:
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
    trim rw { rangeValid { 0..9 } default { 0 } ctrlRO (gain == 9) }
Right:
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
    trim rw { rangeValid { 0..9 } default { 0 } ctrlRO (gain[1] == 9) }
)"},
    {"index-mismatch", GROUP_BUILDER, LEVEL_ERROR, "index values or an index that do not fit",
     R"(The values in brackets are more or fewer than the parameter has indices, or one
of them is none of the index's values; or an expression names an index that its
own parameter does not have. The daemon refuses the text.

Wrong:
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
    monitor rw { rangeValid { 0..(gain[3]) } default { 0 } }
Right:
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
    monitor rw { rangeValid { 0..(gain[2]) } default { 0 } }
)"},
    {"indexed-index", GROUP_BUILDER, LEVEL_WARNING, "an index has a statement for parameters only",
     R"(An index has no instances and no value. So its index statement, its defaults,
its ctrlRO and its rangeDoc are passed over. Parameters with two indices name
both.

Wrong:
    side index { rangeValid { "left", "right" } }
    channel index { index { side } rangeValid { 1..2 } }
    gain rw { index { channel, side } rangeValid { 0..9 } }
Right:
    side index { rangeValid { "left", "right" } }
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel, side } rangeValid { 0..9 } }
)"},
    {"invalid-expression", GROUP_BUILDER, LEVEL_ERROR, "an expression that is malformed",
     R"(An operator or an operand is missing or one too many, the expression is empty,
or it divides by 0 whatever the parameters hold. A "-" behind an opening
parenthesis takes a left side: write (0 - 1). The daemon refuses the text.

Wrong:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mode 2) }
Right:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mode == 2) }
)"},
    {"invalid-range", GROUP_BUILDER, LEVEL_ERROR, "a range item that is neither value nor span",
     R"(The lower end of a span is above its upper end, an end is a text, or an item is
empty. The daemon refuses the text.

Wrong:
    gain rw { rangeValid { 9..0 } }
Right:
    gain rw { rangeValid { 0..9 } }
)"},
    {"late-follower", GROUP_PROVED, LEVEL_WARNING, "judged in a commit before what it follows",
     R"(A parameter that nothing depends on is judged at the very start of the commit
that stages it. What it follows by way of a derived parameter still holds its
old value then. So a value that is staged together with the change can be cut to
the old range; or it is lost, because the parameter was read-only or not
available before. Let the range, the ctrlRO or the ctrlValid name the parameters
that are set, not those derived from them.

Wrong:
    mode rw { rangeValid { "1080i/50", "720p/50" } default { "1080i/50" } }
    samples ro { rangeValid { (vidStd::mode::spal) } }
    left rw { rangeValid { 0..(samples - 1) } default { 0 } }
Right:
    mode rw { rangeValid { "1080i/50", "720p/50" } default { "1080i/50" } }
    left rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 0 } }
)"},
    {"long-line", GROUP_READING, LEVEL_WARNING, "a line of more than 1,023 bytes",
     R"(The text is read in pieces of at most 1,024 bytes, the end of the line among
them, and each piece counts as a line: a name is cut in two, the rest of a
comment is read as definitions, and what the daemon says has another line
number. Break the line. Any white space between words will do.
)"},
    {"merged", GROUP_STATIC, LEVEL_WARNING, "a name is defined twice",
     R"(The two definitions are one: the statements of the second join those of the
first, and the later access word counts. Ranges add up, so a copy that was
adapted does not replace the original. Two names are mostly meant.

Wrong:
    gain_left rw { rangeValid { 0..9 } default { 0 } }
    gain_left ro { valueChange { "max" -> 9 } }
Right:
    gain_left rw { rangeValid { 0..9 } default { 0 } }
    gain_right ro { rangeValid { 0..9 } valueChange { "max" -> 9 } }
)"},
    {"missing-constant", GROUP_BUILDER, LEVEL_ERROR,
     "a constant that the command line does not give",
     R"(An expression uses a name in capitals that the text does not define, so it is a
constant of the command line. Constants are given to the daemon in every
variant, and so they are to be given here.

Wrong:
    fibre ro { rangeValid { 0..9 } ctrlValid (MODEL == "pro") }
Right, with -D MODEL=basic,pro:
    fibre ro { rangeValid { 0..9 } ctrlValid (MODEL == "pro") }
)"},
    {"narrowed-away", GROUP_PROVED, LEVEL_NOTE, "instances disappear, or are too many",
     R"(A range with a condition takes values of an index away. In the situation named,
instances that hold values no longer exist, no instance is left at all, or a
commit takes in more than the daemon allows. Values of lost instances are kept
and no longer corrected, and a commit that names one fails.

Wrong:
    inputs rw { rangeValid { 0..4 } default { 4 } }
    input index { rangeValid { 1..4 } rangeValid (inputs > 0) { 1..(inputs) } }
    gain rw { index { input } rangeValid { 0..9 } default { 0 } }
Right:
    input index { rangeValid { 1..4 } }
    gain rw { index { input } rangeValid { 0..9 } default { 0 } }
)"},
    {"never-true", GROUP_PROVED, LEVEL_WARNING, "a condition holds in no situation",
     R"(A condition is never true whatever the parameters hold, in all variants that
were asked for. What it governs never applies. Two ctrlValid that are never true
together leave a definition that is never available. Mostly an && was to be an
||, or a word is misspelt. It is an error where that leaves a parameter without
a range in some situation.

Wrong:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mode < 1 && mode > 2) }
Right:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mode < 1 || mode > 2) }
)"},
    {"no-value", GROUP_PROVED, LEVEL_ERROR, "a range or default that has no result sometimes",
     R"(In the situation named, a range or a default divides by 0 or the like. Such a
range cannot be used, and such a default is passed over.

Wrong:
    step rw { rangeValid { 0..9 } default { 1 } }
    count rw { rangeValid { 0..(100 / step) } default { 0 } }
Right:
    step rw { rangeValid { 1..9 } default { 1 } }
    count rw { rangeValid { 0..(100 / step) } default { 0 } }
)"},
    {"not-an-index", GROUP_BUILDER, LEVEL_ERROR, "an index statement names a parameter",
     R"(Only a definition with the access word "index" gives index values. The daemon
refuses the text.

Wrong:
    channel rw { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
Right:
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
)"},
    {"nothing-defined", GROUP_READING, LEVEL_WARNING, "a text without a definition",
     R"(The text is empty, or has comments only. The daemon takes it, and the device has
no parameters then. Mostly it is another file that was meant, or one that was
written in vain. A text with a comment for ostrel-check is taken as it is.

Wrong:
    # gain rw { rangeValid { 0..9 } default { 0 } }
Right:
    gain rw { rangeValid { 0..9 } default { 0 } }
)"},
    {"octal", GROUP_STATIC, LEVEL_WARNING, "a number with a leading 0 is octal",
     R"(A leading 0 makes a number octal: 010 is 8. Leave it out, or write 8. The 000 of
1,000 is an item of its own: write 1000.

Wrong:
    gain rw { rangeValid { 0..010 } default { 0 } }
Right:
    gain rw { rangeValid { 0..10 } default { 0 } }
)"},
    {"odd-name", GROUP_BUILDER, LEVEL_WARNING, "a name with a sign that belongs to no name",
     R"(A name may have nearly every sign, so one behind it, and quotes around it, are
taken for a part of it. Clients would have to use the name with that sign. It is
an error where an expression names the definition without it.

Wrong:
    gain: rw { rangeValid { 0..9 } default { 0 } }
Right:
    gain rw { rangeValid { 0..9 } default { 0 } }
)"},
    {"open-definition", GROUP_READING, LEVEL_ERROR, "a definition is not closed",
     R"(A brace is missing, so that the next definition is read as statements of the
one that is still open, or the text ends within it.

Wrong:
    gain rw {
      rangeValid { 0..9 }
    hue rw { rangeValid { 0..9 } }
Right:
    gain rw {
      rangeValid { 0..9 }
    }
    hue rw { rangeValid { 0..9 } }
)"},
    {"open-quote", GROUP_READING, LEVEL_ERROR, "a quoted text is not closed",
     R"(A quoted text goes from one double quote to the next, over lines if need be.
Where one is missing, all that follows is read inside out.

Wrong:
    mode rw { rangeValid { "film", "video } }
Right:
    mode rw { rangeValid { "film", "video" } }
)"},
    {"other-standard", GROUP_STATIC, LEVEL_WARNING, "a value that selects another standard",
     R"(A value selects the first standard whose whole name it begins with. The name of
this one begins with that of another, which is found first, so the figures are
those of the other.

Wrong:
    mode rw { rangeValid { "1080p/25sF", "1080i/50" } default { "1080i/50" } }
    left rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 0 } }
Right:
    mode rw { rangeValid { "1080p/25", "1080i/50" } default { "1080i/50" } }
    left rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 0 } }
)"},
    {"over-budget", GROUP_PROVED, LEVEL_ERROR, "one change is more work than the daemon allows",
     R"(A commit of one parameter takes in so many instances, or so many steps, that the
daemon ends it: the commit fails, and no value changes. Keep the constant ranges
of indices small.

Wrong:
    x index { rangeValid { 1..2000 } }
    y index { rangeValid { 1..2000 } }
    limit rw { rangeValid { 0..9 } default { 9 } }
    cell rw { index { x, y } rangeValid { 0..(limit) } default { 0 } }
Right:
    x index { rangeValid { 1..20 } }
    y index { rangeValid { 1..20 } }
    limit rw { rangeValid { 0..9 } default { 9 } }
    cell rw { index { x, y } rangeValid { 0..(limit) } default { 0 } }
)"},
    {"overflow", GROUP_PROVED, LEVEL_WARNING, "a sum, difference or product that wraps around",
     R"(Numbers have 32 bits and a sign, and wrap around. In the situation named, a
result is beyond that, and comes out negative or much too small.

Wrong:
    a rw { rangeValid { 0..100000 } default { 0 } }
    b rw { rangeValid { 0..100000 } default { 0 } }
    area ro { rangeValid { (a * b) } }
Right:
    a rw { rangeValid { 0..10000 } default { 0 } }
    b rw { rangeValid { 0..10000 } default { 0 } }
    area ro { rangeValid { (a * b) } }
)"},
    {"overlap", GROUP_PROVED, LEVEL_WARNING, "items or statements that say the same twice",
     R"(Two items of a list have values in common, or are the same expression; or two
statements of a kind have the same condition, or none, and differ. Of two such
ranges a value is allowed when either allows it, and of two defaults only the
first counts. So one of the two says nothing, or not what was meant. That is so,
too, where one condition contains the other: the wider range counts as well.

Of a parameter that the device derives, with one value in each range, the value
that is held stays wherever its range still counts. So where two such ranges can
count together, its value depends on what was before. The limits of a hysteresis
are left alone. So are two ranges that give one value: write a value that is to
be held on to in a range of its own.

Wrong:
    gain rw { rangeValid { 0..5, 3..9 } default { 0 } }
Right:
    gain rw { rangeValid { 0..9 } default { 0 } }
)"},
    {"own-index", GROUP_STATIC, LEVEL_ERROR, "a ctrlValid names the own index",
     R"(A ctrlValid is judged before the index values are known. So the definition's own
index has no value in it, the condition is never true, and no instance can ever
be set. A ctrlRO may name its own indices.

Wrong:
    channel index { rangeValid { 1..2 } }
    trim rw {
      index { channel }
      ctrlValid (channel == 1)
      rangeValid { 0..9 }
      default { 0 }
    }
Right:
    channel index { rangeValid { 1..2 } }
    trim rw {
      index { channel }
      ctrlRO (channel == 2)
      rangeValid { 0..9 }
      default { 0 }
    }
)"},
    {"precedence", GROUP_STATIC, LEVEL_WARNING,
     "a comparison binds tighter than \"&\", \"^\", \"|\"",
     R"(mask & 8 == 0 is mask & (8 == 0), a == b == 1 is (a == b) == 1, and
a || b && c is a || (b && c), which is told where b and c cannot both hold.
Write the parentheses that you mean.

Wrong:
    mask rw { rangeValid { 0..255 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mask & 8 == 0) }
Right:
    mask rw { rangeValid { 0..255 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO ((mask & 8) == 0) }
)"},
    {"quoted-number", GROUP_STATIC, LEVEL_WARNING, "a quoted number beside numbers",
     R"(Where there are numbers among the items of a range, a value that is a number is
judged by them alone, so the quoted number is refused. Write it without quotes.

Wrong:
    gain rw { rangeValid { "5", 7..9 } default { 7 } }
Right:
    gain rw { rangeValid { 5, 7..9 } default { 7 } }
)"},
    {"repeated-condition", GROUP_BUILDER, LEVEL_WARNING, "two like conditions are both constant",
     R"(Two ctrlRO statements, or two ctrlValid statements, are both constantly true or
both constantly not. One of them says nothing.

Wrong:
    gain rw { rangeValid { 0..9 } ctrlRO (1) ctrlRO (2 > 1) }
Right:
    gain rw { rangeValid { 0..9 } ctrlRO (1) }
)"},
    {"same-condition", GROUP_BUILDER, LEVEL_ERROR, "two defaults have the same condition",
     R"(Two defaults of one parameter have the same condition, or both have none. Only
one can count, and the daemon refuses the text.

Wrong:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { default (mode == 1) { 10 } default (mode == 1) { 20 } }
Right:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { default (mode == 1) { 10 } default { 20 } }
)"},
    {"second-index-list", GROUP_BUILDER, LEVEL_WARNING, "a parameter has a second index statement",
     R"(Only the first index statement counts; the second one is passed over. One
statement names all indices.

Wrong:
    channel index { rangeValid { 1..2 } }
    side index { rangeValid { "left", "right" } }
    gain rw { index { channel } index { side } rangeValid { 0..9 } }
Right:
    channel index { rangeValid { 1..2 } }
    side index { rangeValid { "left", "right" } }
    gain rw { index { channel, side } rangeValid { 0..9 } }
)"},
    {"self-reference", GROUP_STATIC, LEVEL_WARNING, "a parameter names itself in its own range",
     R"(The range is computed from the value that it is to judge: the value from before.
So a value may only shrink, or run away a step with each commit.

Wrong:
    level rw { rangeValid { 0..(level) } default { 5 } }
Right:
    limit rw { rangeValid { 0..9 } default { 9 } }
    level rw { rangeValid { 0..(limit) } default { 5 } }
)"},
    {"single-equals", GROUP_READING, LEVEL_ERROR, "\"=\" where \"==\" is meant",
     R"(An expression compares with ==. There is no assignment, and the daemon refuses
the text.

Wrong:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mode = 2) }
Right:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mode == 2) }
)"},
    {"syntax", GROUP_READING, LEVEL_ERROR, "the text is not well formed",
     R"(Something is where the grammar has no place for it. The caret shows the first
character or word that does not fit. The check goes on at the next statement or
definition.

Wrong:
    gain rw { rangeValid { 0-9 } default { 0 } }
Right:
    gain rw { rangeValid { 0..9 } default { 0 } }
)"},
    {"translation", GROUP_STATIC, LEVEL_WARNING, "a valueChange that cannot do what it says",
     R"(The target is outside every range of the parameter, so that it is corrected to
another value; or the target is itself the source of a translation, which is
followed once; or the source is an allowed value, which then can never be
chosen.

Wrong:
    freeze rw {
      rangeValid { 0..1 }
      valueChange { "on" -> 2 }
      default { 0 }
    }
Right:
    freeze rw {
      rangeValid { 0..1 }
      valueChange { "on" -> 1 }
      default { 0 }
    }
)"},
    {"uncovered", GROUP_PROVED, LEVEL_ERROR, "sometimes no range or no default applies",
     R"(All ranges, or all defaults, have a condition, and none of them holds in the
situation named. Without a range every value is accepted; that is an error.
Without a default a reset gives the empty value; that is a warning. An index
needs a constant range without a condition in any case: queries, and commits
that do not name an instance, know only those that it gives. An index without
any range takes every value; that is a warning.

Wrong:
    mode rw { rangeValid { 1..3 } default { 1 } }
    gain rw {
      rangeValid (mode == 1) { 0..9 }
      rangeValid (mode == 2) { 0..99 }
      default { 0 }
    }
Right:
    mode rw { rangeValid { 1..3 } default { 1 } }
    gain rw {
      rangeValid (mode == 1) { 0..9 }
      rangeValid (mode != 1) { 0..99 }
      default { 0 }
    }
)"},
    {"undefined-figure", GROUP_PROVED, LEVEL_WARNING,
     "a selector may hold what selects no standard",
     R"(In the situation named, a figure of a video standard is undefined: its selector
holds a value that begins with no standard's name, or selects a picture format
without that figure. A range with the figure cannot be used then, a default is
passed over, and a condition is not true.

Wrong:
    mode rw { rangeValid { "720p/50", "off" } default { "off" } }
    left rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 0 } }
Right:
    mode rw { rangeValid { "720p/50", "off" } default { "off" } }
    left rw {
      rangeValid (mode == "720p/50") { 0..(vidStd::mode::spal - 1) }
      rangeValid (mode == "off") { 0 }
      default { 0 }
    }
)"},
    {"undefined-index", GROUP_BUILDER, LEVEL_ERROR, "an index statement names what is not defined",
     R"(The text has no index of that name, further up or further down. The daemon
refuses the text.

Wrong:
    chanel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
Right:
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
)"},
    {"undefined-name", GROUP_BUILDER, LEVEL_ERROR, "an expression uses a name that nothing defines",
     R"(The name is neither a parameter of the text nor a constant of the command line.
The daemon refuses the text.

Wrong:
    width rw { rangeValid { 16..1920 } default { 720 } }
    left rw { rangeValid { 0..(widht - 1) } default { 0 } }
Right:
    width rw { rangeValid { 16..1920 } default { 720 } }
    left rw { rangeValid { 0..(width - 1) } default { 0 } }
)"},
    {"unknown-access", GROUP_READING, LEVEL_ERROR, "the word after a name is no access word",
     R"(A definition is a name, one of rw, ro, rostrict, wo and index, and statements in
braces.

Wrong:
    gain readonly { rangeValid { 0..9 } }
Right:
    gain ro { rangeValid { 0..9 } }
)"},
    {"unknown-figure", GROUP_BUILDER, LEVEL_ERROR, "a figure that video standards do not have",
     R"(The word behind the second "::" is none of the figures, which are listed in
ostrel-definitions(5).

Wrong:
    mode rw { rangeValid { "1080i/50", "720p/50" } default { "720p/50" } }
    left rw { rangeValid { 0..(vidStd::mode::samples - 1) } default { 0 } }
Right:
    mode rw { rangeValid { "1080i/50", "720p/50" } default { "720p/50" } }
    left rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 0 } }
)"},
    {"unknown-keyword", GROUP_READING, LEVEL_ERROR, "a statement that does not exist",
     R"(Statements begin with index, rangeValid, rangeDoc, ctrlRO, ctrlValid, default or
valueChange; upper and lower case differ.

Wrong:
    gain rw { rangevalid { 0..9 } }
Right:
    gain rw { rangeValid { 0..9 } }
)"},
    {"unknown-standard", GROUP_BUILDER, LEVEL_WARNING,
     "a value that names no standard of the catalogue",
     R"(The value is used to select a video standard, and looks like the name of one,
but begins with no whole name of the catalogue. Its figures are undefined. Or it
is a name with white space behind it, which no client would write.
ostrel-vidstd(1) lists the names.

Wrong:
    mode rw { rangeValid { "720p/60", "720p/50" } default { "720p/50" } }
    left rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 0 } }
Right:
    mode rw { rangeValid { "720p/60.00", "720p/50" } default { "720p/50" } }
    left rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 0 } }
)"},
    {"unquoted-text", GROUP_READING, LEVEL_ERROR, "a text without quotes",
     R"(A text among the items of a range, in a default or in a translation is written
in double quotes. Only numbers are bare.

Wrong:
    mode rw { rangeValid { film, video } }
Right:
    mode rw { rangeValid { "film", "video" } }
)"},
    {"unreachable", GROUP_PROVED, LEVEL_WARNING, "a statement that an earlier one always covers",
     R"(Whenever the condition of this default, range or rangeDoc holds, that of an
earlier one holds as well and decides. Have the most special condition first. Of
ranges that derive a value, let the conditions exclude each other.

Wrong:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { default (mode > 0) { 1 } default (mode > 1) { 2 } default { 0 } }
Right:
    mode rw { rangeValid { 0..3 } default { 0 } }
    gain rw { default (mode > 1) { 2 } default (mode > 0) { 1 } default { 0 } }
)"},
    {"unsettled", GROUP_PROVED, LEVEL_ERROR, "parameters that do not come to rest",
     R"(After the situation named has been committed, one more commit of the same values
changes something again. Two parameters that limit each other do so; let one of
them lead.

Wrong:
    a rw { rangeValid { (1 - b) } default { 0 } }
    b rw { rangeValid { (a) } default { 0 } }
Right:
    a ro { rangeValid { (1 - b) } }
    b rw { rangeValid { 0..1 } default { 0 } }
)"},
    {"unused-allowance", GROUP_OWN, LEVEL_WARNING, "a \"# check:\" comment that silences nothing",
     R"(A line "# check: allow CODE, CODE" silences findings in the statement or the
definition that follows it. This one has nothing to silence, so what it speaks
of is mended, is somewhere else, or is misspelt; or the line has another form.
Take it away, so that it does not hide the next mistake.

Wrong:
    # check: allow octal
    gain rw { rangeValid { 0..9 } default { 0 } }
Right:
    gain rw { rangeValid { 0..9 } default { 0 } }
)"},
    {"unused-constant", GROUP_BUILDER, LEVEL_WARNING, "a given constant that nothing uses",
     R"(The command line gives a constant that no expression of the text names. Mostly
its name is misspelt; or the text defines a parameter of that name, which wins.

Wrong, with -D MODLE=pro:
    gain rw { rangeValid { 0..9 } default { 0 } }
Right:
    gain rw { rangeValid { 0..9 } default { 0 } }
)"},
    {"unused-index", GROUP_STATIC, LEVEL_WARNING, "an index that no parameter has",
     R"(The definition has no effect: no index statement names it.

Wrong:
    channel index { rangeValid { 1..2 } }
    gain rw { rangeValid { 0..9 } default { 0 } }
Right:
    channel index { rangeValid { 1..2 } }
    gain rw { index { channel } rangeValid { 0..9 } default { 0 } }
)"},
    {"write-only-condition", GROUP_READING, LEVEL_ERROR, "a trigger that hangs on parameters",
     R"(A wo parameter is never read-only, so it cannot have a ctrlRO. A ctrlValid says
when the trigger is available. Nor should its range follow a parameter: each
commit of that announces the trigger again, with its last value, as if somebody
had set it. That is a warning.

Wrong:
    locked rw { rangeValid { 0..1 } default { 0 } }
    store wo { rangeValid { "idle", "now" } ctrlRO (locked == 1) }
Right:
    locked rw { rangeValid { 0..1 } default { 0 } }
    store wo { rangeValid { "idle", "now" } ctrlValid (locked == 0) }
)"},
};

}  // namespace

std::span<const FindingCode> findingCodes() { return CODES; }

const FindingCode* findFindingCode(std::string_view name) {
  const auto* const found = std::ranges::find(CODES, name, &FindingCode::name);
  return found == std::end(CODES) ? nullptr : found;
}

const FindingCode* nearestFindingCode(std::string_view name) {
  NearestWord nearest(name);
  for (const FindingCode& code : CODES) nearest.offer(code.name);
  return nearest.found() ? findFindingCode(*nearest.found()) : nullptr;
}

FindingLevel levelOf(const Finding& finding) {
  if (finding.level) return *finding.level;
  const FindingCode* const code = findFindingCode(finding.code);
  assert(code != nullptr);
  return code->level;
}

const char* levelWord(FindingLevel level) {
  constexpr const char* WORDS[] = {"error", "warning", "note"};
  return WORDS[level];
}
