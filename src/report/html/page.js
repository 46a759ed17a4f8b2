const report = JSON.parse(document.getElementById("kiv-report").textContent);
d3.select("main").append("h1").text(report.runs.map((run) => run.run).join(" → "));
