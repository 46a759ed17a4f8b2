// Debian's d3 comes without types.
declare const d3: any;
type D3Selection = any;
