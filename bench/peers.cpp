#include "bench/peers.h"

#include <algorithm>

namespace fax::bench {

namespace {

template <typename Peer>
std::vector<Peer> &list_of() {
  static std::vector<Peer> list;
  return list;
}

template <typename Peer>
void enter(Peer peer) {
  auto &list = list_of<Peer>();
  auto const before = [](Peer const &left, Peer const &right) { return left.who < right.who; };
  list.insert(std::upper_bound(list.begin(), list.end(), peer, before), std::move(peer));
}

}  // namespace

std::vector<ModelMaker> const &models() { return list_of<ModelMaker>(); }
std::vector<Base64> const &base64s() { return list_of<Base64>(); }

Entered::Entered(ModelMaker model) { enter(std::move(model)); }
Entered::Entered(Base64 base64) { enter(std::move(base64)); }

}  // namespace fax::bench
