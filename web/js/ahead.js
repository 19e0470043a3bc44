// Asks for what the first view needs while the scripts of the page still come.

import { askAhead } from "./host.js";

askAhead("/host", "/slots", "/flow");
