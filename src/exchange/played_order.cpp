#include "exchange/played_order.h"

#include "midi/performance.h"

#include <map>

namespace quillon {

std::vector<int> PlayedOrder(Tune& tune)
{
    const Sound silence{};
    Performance performance(tune, silence);
    performance.WalkSilently();
    std::map<int, int> measures;  // by head record
    for (int i = 1; i <= tune.LastNote; ++i)
        if (tune[i].IsHead())
            measures.emplace(i, static_cast<int>(measures.size()));
    std::vector<int> order;
    for (const PlayedMeasure& measure : performance.Played())
        if (const auto found = measures.find(measure.Head); found != measures.end())
            order.push_back(found->second);
    return order;
}

}  // namespace quillon
