#pragma once

#include <memory>

#include "server/admin/Settings.h"
#include "server/http/Router.h"
#include "server/store/Store.h"

namespace kel::server {

struct Visit;

/// The administration: finds what answers a request, once its sender may make it. For any thread.
class Site {
public:
    Site(Store& store, AdminSettings settings);
    ~Site();

    /// Makes the router hand over what none of its routes answers.
    void AddTo(Router& router);

private:
    class Parts;

    Answer Handle(const Call& call);
    Answer Find(Visit& visit, bool isProgram);

    AdminSettings settings;
    std::unique_ptr<Parts> parts;
};

}  // namespace kel::server
