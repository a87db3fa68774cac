#pragma once

#include <string_view>

namespace nStatus {

/// The style sheet of the page that `status --html` writes.
inline constexpr std::string_view htmlStyle = R"css(
:root {
  color-scheme: light dark;
  --paper: #fff; --ink: #1b1f24; --soft: #59636e; --line: #d8dee4; --card: #f6f8fa;
  --bad: #c1121f; --bad-card: #fff0f0; --warn: #8a5a00; --good: #176f37;
  --initialize: #2563c9; --stop: #b25e00; --cleanup: #6d48c4;
  --lane0: #2563c9; --lane1: #0f7d70; --lane2: #9a4fb8; --lane3: #b25e00; --lane4: #4a7a12; --lane5: #6b7280;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #0f1419; --ink: #e6e9ed; --soft: #9aa5b1; --line: #2b333d; --card: #181f27;
    --bad: #ff7b7b; --bad-card: #2a1719; --warn: #e5b454; --good: #5fd38d;
    --initialize: #6ea8fe; --stop: #f0a55a; --cleanup: #b197fc;
    --lane0: #6ea8fe; --lane1: #4fd1c0; --lane2: #d59bee; --lane3: #f0a55a; --lane4: #a3cf5a; --lane5: #9aa5b1;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; }
body {
  margin: 0 auto; max-width: 72rem; padding: 1.5rem 1.25rem 3rem;
  background: var(--paper); color: var(--ink); font: 1rem/1.45 system-ui, sans-serif; overflow-wrap: anywhere;
}
h1 { margin: 0; font-size: 1rem; font-weight: 500; color: var(--soft); }
h2 { margin: 2.25rem 0 .75rem; font-size: 1.2rem; }
h3 { margin: 0; font-size: 1rem; }
p { margin: 0; }
ol, ul, dl { margin: 0; padding: 0; list-style: none; }
a { color: inherit; text-decoration-color: var(--soft); text-underline-offset: .15em; }
code, .time { font-family: ui-monospace, monospace; font-size: .9em; font-variant-numeric: tabular-nums; }
.verdict { margin: .1rem 0 1rem; font-size: 1.75rem; font-weight: 650; line-height: 1.2; }
.verdict.bad, .bad { color: var(--bad); }
.verdict.good { color: var(--good); }
.warn { color: var(--warn); }
.soft { color: var(--soft); }
.facts { display: grid; grid-template-columns: minmax(13rem, 2fr) repeat(auto-fit, minmax(8.5rem, 1fr)); gap: .75rem 1.5rem; }
.facts dt { color: var(--soft); font-size: .85rem; }
.facts dd { margin: 0; }
.cards { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(100%, 21rem), 1fr)); gap: .75rem; }
.cards > li {
  padding: .75rem 1rem; border: 1px solid var(--line); border-left: 4px solid var(--bad); border-radius: 6px;
  background: var(--bad-card);
}
.cards > .mild { border-left-color: var(--warn); background: var(--card); }
.cards h3 { display: flex; justify-content: space-between; gap: 1rem; }
.cards h3 code { white-space: nowrap; }
.cards p { margin-top: .35rem; }
.cards .remedy::before { content: "\2192\00a0"; }
.messages { margin-bottom: .75rem; border-left: 4px solid var(--bad); background: var(--bad-card); border-radius: 6px; }
.messages li { padding: .4rem 1rem; }
.legend { display: flex; flex-wrap: wrap; gap: .25rem 1.25rem; margin-bottom: .5rem; color: var(--soft); font-size: .85rem; }
.legend b { display: inline-block; width: .8rem; height: .8rem; border-radius: 2px; margin-right: .4rem; vertical-align: -.08rem; }
.plugins > li {
  position: relative; display: grid; align-items: center; min-height: 3.5rem;
  grid-template-columns: minmax(0, 4fr) minmax(0, 6fr) 5rem; gap: .25rem 1.25rem;
  padding: .5rem .25rem .5rem calc(var(--lanes) + .75rem);
}
.plugins > li::after {
  content: ""; position: absolute; left: calc(var(--lanes) + .75rem); right: 0; bottom: 0; height: 1px; background: var(--line);
}
.plugins > li:target { background: var(--card); }
.plugins svg { position: absolute; left: 0; top: -1px; width: var(--lanes); height: calc(100% + 2px); }
.plugins path { fill: none; stroke-width: 2; vector-effect: non-scaling-stroke; }
.l0 { stroke: var(--lane0); } .l1 { stroke: var(--lane1); } .l2 { stroke: var(--lane2); }
.l3 { stroke: var(--lane3); } .l4 { stroke: var(--lane4); } .l5 { stroke: var(--lane5); }
path.dead { stroke: var(--bad); stroke-dasharray: 4 3; }
.dot {
  position: absolute; left: calc(var(--lanes) - 12px); top: calc(50% - 6px); width: 12px; height: 12px; border-radius: 50%;
  border: 2px solid var(--ink); background: var(--paper);
}
.failed > .dot { border-color: var(--bad); background: var(--bad); }
.name { font-weight: 600; }
.failed .name { color: var(--bad); }
.calls > .soft { font-size: .85rem; }
.needs { color: var(--soft); font-size: .85rem; }
.calls { display: grid; gap: .2rem; }
.call { display: grid; grid-template-columns: minmax(0, 11rem) minmax(0, 1fr) 4.5rem; gap: .6rem; align-items: center; font-size: .85rem; }
.call .entry { color: var(--soft); overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.call .time { text-align: right; white-space: nowrap; }
.track { height: .7rem; border-radius: 2px; background: var(--card); }
.track i { display: block; height: 100%; min-width: 2px; border-radius: 2px; }
.initialize { background: var(--initialize); } .stop { background: var(--stop); } .cleanup { background: var(--cleanup); }
.code { text-align: right; white-space: nowrap; }
footer { margin-top: 2rem; color: var(--soft); font-size: .85rem; }
@media (max-width: 44rem) {
  body { padding: 1rem .875rem 2rem; }
  .verdict { font-size: 1.45rem; }
  .facts { grid-template-columns: 1fr 1fr; }
  .facts > :first-child { grid-column: 1 / -1; }
  .plugins > li { grid-template-columns: minmax(0, 1fr) auto; padding-left: calc(var(--lanes) + .5rem); }
  .plugins > li::after { left: calc(var(--lanes) + .5rem); }
  .code { align-self: start; }
  .calls { grid-column: 1 / -1; grid-row: 2; }
  .call { grid-template-columns: minmax(0, 1fr) auto; gap: 0 .6rem; }
  .call .track { grid-column: 1 / -1; grid-row: 2; height: .4rem; }
}
@media print {
  :root {
    color-scheme: light;
    --paper: #fff; --ink: #000; --soft: #444; --line: #bbb; --card: #eee; --bad: #a80f1a; --bad-card: #fff;
    --warn: #6d4700; --good: #0d5527;
    --initialize: #2563c9; --stop: #b25e00; --cleanup: #6d48c4;
    --lane0: #2563c9; --lane1: #0f7d70; --lane2: #9a4fb8; --lane3: #b25e00; --lane4: #4a7a12; --lane5: #6b7280;
  }
  * { -webkit-print-color-adjust: exact; print-color-adjust: exact; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  .cards > li, .plugins > li, .messages li { break-inside: avoid; }
  .plugins > li { grid-template-columns: minmax(0, 4fr) minmax(0, 7fr) 4rem; }
  .call { grid-template-columns: minmax(0, 9rem) minmax(0, 1fr) 4.5rem; }
  h2 { break-after: avoid; }
  a { text-decoration: none; }
}
)css";

}  // namespace nStatus
