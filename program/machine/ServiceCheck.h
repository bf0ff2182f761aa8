// A check by the service in the steps of the control's Analysis. One thread calls them, one after the other.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "verdict/Verdict.h"

namespace kel::program {

/// What the service answered. Texts are UTF-8.
struct ServiceAnswer {
    std::string text;        // whatever the status; empty without an answer
    std::string state;       // how the exchange ended: value 73390
    bool isRefused = false;  // the service sent no list of groups, but an error such as "busy"
};

/// Names the check to the service.
/// @param product as the service names it
/// @param session empty for a random one
void BeginCheck(const std::string& product, const std::string& session = {});

/// What a check would do, before anything is read.
struct CheckOffer {
    ServiceAnswer wanted;
    std::string title;  // of the product's requirements; empty when the service did not send it
};

/// Asks for the wanted values, and, where the service sends them, for the title. Nothing of the machine is
/// read, and the session is not sent. FetchVerdict does not ask again.
CheckOffer FetchOffer();

/// Asks which values the service wants for the product. Nothing of the machine is read, and the session is
/// not sent. FetchVerdict does not ask again.
ServiceAnswer FetchWantedGroups();

/// Whether the answer is a list of groups: numbers, separated by "|" or ",". An empty list is one.
bool IsGroupList(const ServiceAnswer& answer);

/// The values of the catalogue that the report will have.
std::vector<int> ListReportedValues();

/// A verdict is there only when the answer has one.
struct VerdictAnswer : ServiceAnswer {
    std::optional<Verdict> verdict;
};

/// Reads the machine, uploads the report, and asks for the verdict.
VerdictAnswer FetchVerdict();

}  // namespace kel::program
