// The check's page: the control's verdict, or a rough answer from what the browser itself reports. The verdict came over
// plain HTTP: its texts go into text nodes, and no part of it becomes markup.
(function () {
  // What the browser can judge by itself on Windows when there is no control: a name, what is needed, and what is found.
  var ROUGH = [
    ["Processors", "at least 2", function () { return navigator.hardwareConcurrency; }, 2],
    ["Memory class (GB)", "at least 2", function () { return navigator.deviceMemory; }, 2],
    ["Graphics", "any", renderer, null]
  ];
  var MARKS = { pass: "\u2713 Meets", fail: "\u2717 Does not meet", unknown: "? Not known" };
  var TOTALS = {
    pass: "Yes: this machine meets the requirements.",
    fail: "No: this machine does not meet all requirements.",
    unknown: "Not sure: some facts could not be determined."
  };

  // Why there is no verdict, by what the control says of the last exchange (its value 73390), and what to do.
  var TROUBLES = [
    [/^not reached: (\d+)/, "The analysis service was not reached.",
      "Error $1. Please check the connection to the Internet, and try again."],
    [/^unknown product/, "The analysis service does not know this product.", "Please inform the owner of this page."],
    [/^another host answered/, "Another host answered in the place of the analysis service.",
      "A network may ask you to log in first, or a proxy stands in between. Please log in there, and try again."],
    [/^cut/, "The answer of the analysis service was cut off.", "Please try again."],
    [/^/, "The analysis service gave no verdict.", "Please try again later."]
  ];

  function byId(id) { return document.getElementById(id); }

  function add(parent, kind, text, name) {
    var element = parent.appendChild(document.createElement(kind));
    if (name) element.className = name;
    element.appendChild(document.createTextNode(text));
    return element;
  }

  function say(id, text, name) {
    var place = byId(id);
    while (place.firstChild) place.removeChild(place.firstChild);
    place.appendChild(document.createTextNode(text));
    if (name) place.className = name;
  }

  function plain(text) {
    return text.replace(/&lt;/g, "<").replace(/&gt;/g, ">").replace(/&quot;/g, '"').replace(/&#x27;/g, "'")
      .replace(/&amp;/g, "&");
  }

  function textOf(element, name) {
    var match = new RegExp("<" + name + ">([^<]*)</" + name + ">").exec(element);
    return match ? plain(match[1]) : "";
  }

  function showRow(label, needed, found, result, advice, recommended) {
    var table = byId("requirements"), body = table.getElementsByTagName("tbody")[0];
    table.removeAttribute("hidden");
    var row = body.appendChild(document.createElement("tr"));
    row.className = MARKS[result] ? result : "unknown";
    var head = add(row, "th", recommended ? label + " " : label);
    head.setAttribute("scope", "row");
    if (recommended) add(head, "span", "Recommended", "kind");
    add(row, "td", needed).setAttribute("data-label", "Needed");
    add(row, "td", found || "\u2013").setAttribute("data-label", "Found");
    var mark = add(row, "td", "");
    add(mark, "span", MARKS[row.className], "mark");
    if (advice && result != "pass") add(mark, "span", advice, "advice");
  }

  function showTrouble(state) {
    for (var i = 0; i < TROUBLES.length; ++i) {
      var match = TROUBLES[i][0].exec(state);
      if (!match) continue;
      say("total", TROUBLES[i][1], "total unknown");
      say("note", TROUBLES[i][2].replace("$1", match[1]));
      return;
    }
  }

  function showVerdict(verdict, state) {
    var total = /^<analysis result="(pass|fail|unknown)" [\s\S]*<\/analysis>$/.exec(verdict);
    var line = /<requirement result="(\w+)">([\s\S]*?)<\/requirement>/g;
    if (!total) {  // nothing, or another answer, such as a proxy's error page
      showTrouble(state);
      if (window.console) window.console.log("Instead of a verdict: " + verdict);
      return;
    }
    for (var match; (match = line.exec(verdict)) !== null;) {
      showRow(textOf(match[2], "label"), textOf(match[2], "needed"), textOf(match[2], "found"), match[1],
        textOf(match[2], "advice"), match[2].indexOf("<recommended/>") >= 0);
    }
    say("total", TOTALS[total[1]], "total " + total[1]);
  }

  function renderer() {
    var context = document.createElement("canvas").getContext("webgl");
    var names = context && context.getExtension("WEBGL_debug_renderer_info");
    return names ? context.getParameter(names.UNMASKED_RENDERER_WEBGL) : "";
  }

  function showOtherSystem() {
    var data = navigator.userAgentData;
    showRow("System", "Windows", data && data.platform || navigator.platform, "fail", "");
    say("total", "No: this product needs Windows.", "total fail");
    say("note", "To check a computer with Windows, open this page on it.");
  }

  function showRough() {
    var total = "pass";
    for (var i = 0; i < ROUGH.length; ++i) {
      var found;
      try { found = ROUGH[i][2](); } catch (error) { found = ""; }
      var result = !found ? "unknown" : ROUGH[i][3] && found < ROUGH[i][3] ? "fail" : "pass";
      showRow(ROUGH[i][0], ROUGH[i][1], found ? String(found) : "", result,
        found ? "" : "The browser does not say.");
      total = result == "fail" || total == "fail" ? "fail" : result == "unknown" ? "unknown" : total;
    }
    say("total", total == "fail" ? "Probably not." : total == "pass" ? "Probably yes." : "Perhaps.", "total " + total);
    say("note", "This is a rough answer: the control is not installed, or not allowed here, and the browser itself says " +
      "little of the machine.");
    byId("offer").removeAttribute("hidden");
  }

  window.onload = function () {
    var control = byId("control"), verdict, state;
    try {
      verdict = control.Analysis("requirements", "xml", "1.0");
      state = control.Value("73390") || "";
    } catch (error) {
      if (/Windows NT/.test(navigator.userAgent)) showRough();
      else showOtherSystem();
      return;
    }
    showVerdict(verdict, state);
  };
}());
