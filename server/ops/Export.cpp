#include "server/ops/Export.h"

#include <fstream>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

void Export(const std::filesystem::path& folder, Database& database)
{
    std::filesystem::create_directories(folder);
    for (const Product& product : RequirementSets(database).Products()) {
        const auto set = RequirementSets(database).Newest(product.referrer);
        if (!set)
            continue;  // it has only a draft
        const std::filesystem::path path = folder / (product.referrer + ".json");
        std::ofstream file(path, std::ios::binary);
        file << RequirementSets(database).Text(set->id);
        file.close();
        if (!file)
            throw std::runtime_error(path.string() + " cannot be written");
        Log(Level::Info, "exported",
            {{"referrer", product.referrer}, {"version", std::to_string(set->version)}});
    }
}

}  // namespace kel::server
