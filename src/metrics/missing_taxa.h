// What each way of summing over the taxa of a subsample gives. Internal to this folder.
#pragma once

namespace zorvel {

struct MissingTaxa {
    long double expected = 0;  // sum of q_i: the mean number of taxa missing from the subsample
    long double variance = 0;  // of that number, and so of the number of taxa present
};

}  // namespace zorvel
