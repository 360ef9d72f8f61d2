// ---- All parts of the page

showHead();
showFindings();
showCommands();
showRecorded();
showFunctions();
showRules();
showFlame();
showComparison();
describeTimeline();
listen();
select(-1);
draw();
document.documentElement.dataset.readyAfter = Math.round(performance.now());
