// The faults as an enumeration, and the table that describes them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// Every fault, in the order of the table.
enum class Fault {
#define FAULT(enumerator, name, oldName, group, device, value, result) enumerator,
#include "simulator/Faults.inc"
#undef FAULT
};

/// What a fault acts on: the headings of --list-faults.
enum class FaultGroup { Scope, Reach, Frames, Answers, Count, Card, List, Names, Details, Changes };

/// The affected devices.
enum class FaultDevice { Vehicle, Modules, Camera };

/// What the number in "NAME@3" counts.
enum class FaultCounts { Nothing, Connections, Requests };

/// How the text after NAME= is parsed.
enum class FaultKind {
    None,   ///< takes no value
    Number, ///< a decimal number within the bounds
    Size,   ///< a Number that may end in k (1,024) or M (1,048,576)
    Words,  ///< comma-separated words; the value's name lists those allowed, separated by '|'
    Text    ///< any bytes; \r \n \t \\ and \xHH are decoded
};

/// The value that a fault takes.
struct FaultValue
{
    FaultKind kind = FaultKind::None;
    std::string name;   ///< as shown by --list-faults: "SECONDS", "control|ground"
    std::string preset; ///< used if no value is given; empty: a value is required
    long long minimum = 0;
    long long maximum = 0;
};

/// One row of the table.
struct FaultDescription
{
    Fault fault;
    std::string name;
    std::string oldName; ///< still accepted; empty: it never had another name
    FaultGroup group;
    FaultDevice device;
    FaultValue value;
    std::string result; ///< what a client sees
};

/// Returns all faults, in the order of the enumeration.
const std::vector<FaultDescription>& faultDescriptions();

FaultCounts counted(FaultGroup group);

const FaultDescription& describe(Fault fault);

/// Returns the row with this name or old name, or nullptr.
const FaultDescription* findFault(std::string_view name);

/// Returns the error text "no fault is called ...".
std::string unknownFault(std::string_view name);

} // namespace simulator
