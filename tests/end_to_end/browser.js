// The objects that a page's script uses in a browser; each text that it shows is a line of output.
var window = { setTimeout: function (run) { run(); } };
var place = {
  appendChild: function (node) { return node; },
  removeChild: function () {},
  removeAttribute: function () {},
  setAttribute: function () {},
  getAttribute: function () { return "demo"; },
  getElementsByTagName: function () { return [place]; }
};
var document = {
  getElementById: function (id) { return id == "control" ? control : place; },
  createElement: function () { return place; },
  createTextNode: function (text) { WScript.Echo(text); }
};
