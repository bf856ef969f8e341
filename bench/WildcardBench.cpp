// TWildcardMatcher over long include and exclude mask lists.
#include <benchmark/benchmark.h>

#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/WildcardMatcher.h"

namespace tc {
namespace {

// `count` extension masks ("*.e0;*.e1;...") and names of which one in eight matches one.
String Masks(int count) {
  String masks;
  for (int i = 0; i < count; ++i) (masks += u"*.e") += IntToStr(i) += u";";
  return masks;
}

StringList Names(int count, int masks) {
  StringList names;
  for (int i = 0; i < count; ++i) {
    String name = u"Cache_Entry_";
    (name += IntToStr(i)) += u".";
    if (i % 8 == 0) (name += u"e") += IntToStr(i % masks);
    else name += u"dat";
    names.push_back(name);
  }
  return names;
}

void IncludeList(benchmark::State& state) {
  const int masks = static_cast<int>(state.range(0));
  TWildcardMatcher m;
  m.AddSearchMask(Masks(masks), 0);
  m.AddSearchMask(u"desktop.ini", 1);
  StringList names = Names(1000, masks);
  for (auto _ : state) {
    int hits = 0;
    for (const auto& n : names) hits += m.Match(n);
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(state.iterations() * names.size());
}
BENCHMARK(IncludeList)->Arg(8)->Arg(64)->Arg(512);

void ExcludeList(benchmark::State& state) {
  const int masks = static_cast<int>(state.range(0));
  TWildcardMatcher m;
  m.AddSearchMask(u"*", 0);
  m.AddSearchMask(Masks(masks) + u"desktop.ini", 1);
  StringList names = Names(1000, masks);
  for (auto _ : state) {
    int hits = 0;
    for (const auto& n : names) hits += m.Match(n);
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(state.iterations() * names.size());
}
BENCHMARK(ExcludeList)->Arg(8)->Arg(64)->Arg(512);

// Several stars against long names that almost match: the back-tracking path.
void StarsOnLongNames(benchmark::State& state) {
  TWildcardMatcher m;
  m.AddSearchMask(u"*a*b*c*d*.tmp;*~*.bak;*cache*index*", 0);
  StringList names;
  for (int i = 0; i < 256; ++i)
    names.push_back(String(static_cast<size_t>(state.range(0)), u'a') + u"b" + IntToStr(i) +
                    u"c.tmq");
  for (auto _ : state) {
    int hits = 0;
    for (const auto& n : names) hits += m.Match(n);
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(state.iterations() * names.size());
}
BENCHMARK(StarsOnLongNames)->Arg(32)->Arg(256);

}  // namespace
}  // namespace tc
