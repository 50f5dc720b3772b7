## -*- texinfo -*-
## @deftypefn  {} {} undula_demo ()
## @deftypefnx {} {@var{figures} =} undula_demo ()
##
## Draws three figures: an electrocardiogram from which noise is removed, the packet table of a signal whose
## frequency rises and which has a click in it, and the best basis of that signal.
##
## @var{figures} are their handles.
## @end deftypefn

function figures = undula_demo ()
  drawn = [draw_denoised(), draw_table(), draw_best_basis()];
  if (nargout > 0)
    figures = drawn;
  endif
endfunction

## Small coefficients are noise: what is below the universal threshold goes.
function window = draw_denoised ()
  clean = load (fullfile (fileparts (mfilename ("fullpath")), "ecg.csv"));
  randn ("state", 1);
  noisy = clean + 0.1 * randn (size (clean));
  level = 5;
  y = dwt (noisy, level, "s8");
  noise = median (abs (get_detail (y, 1))) / 0.6745;
  threshold = noise * sqrt (2 * log (numel (y)));
  smooth = get_smooth (y, level);
  y(abs (y) < threshold) = 0;
  y = put_smooth (y, level, smooth);
  denoised = idwt (y, level, "s8");
  seconds = (0:numel (clean) - 1)' / 360;
  window = figure ();
  subplot (2, 1, 1);
  plot (seconds, noisy);
  title (sprintf ("With noise, %.1f dB", decibels (clean, noisy)));
  axis tight;
  subplot (2, 1, 2);
  plot (seconds, denoised);
  title (sprintf ("Without, %.1f dB", decibels (clean, denoised)));
  xlabel ("time in s");
  axis tight;
endfunction

function ratio = decibels (clean, other)
  ratio = 10 * log10 (var (clean, 1) / mean ((other - clean) .^ 2));
endfunction

function x = chirp_signal ()
  t = (0:511)' / 512;
  x = cos (2 * pi * (20 * t + 30 * t .^ 2));
  x(400) += 12;
endfunction

## Time goes to the right, frequency downwards within each level.
function window = draw_table ()
  table = wpt (chirp_signal (), 4, "d8");
  window = figure ();
  for level = 0:4
    subplot (5, 1, level + 1);
    packets = reshape (table{level + 1}, [], 2 ^ level)';
    imagesc (abs (packets));
    ylabel (sprintf ("level %d", level));
    set (gca (), "xtick", [], "ytick", []);
  endfor
  colormap (flipud (gray ()));
endfunction

## Each packet of the basis is a row of boxes as high as its band of frequencies.
function window = draw_best_basis ()
  table = wpt (chirp_signal (), 4, "d8");
  basis = best_basis (table, @entropy);
  y = extract_basis (table, basis);
  energy = zeros (16, 512);
  for packet = basis'
    bands = 2 ^ (4 - packet(1));
    count = 512 / 2 ^ packet(1);
    values = y(packet(2) * count + (1:count))' .^ 2;
    these = packet(2) * bands + (1:bands);
    energy(these, :) = repmat (kron (values, ones (1, 512 / count)) / bands, bands, 1);
  endfor
  window = figure ();
  imagesc ([0, 1], [0.5, 15.5] / 16, sqrt (energy));
  axis xy;
  colormap (flipud (gray ()));
  title (sprintf ("Best basis: %d packets", rows (basis)));
  xlabel ("time");
  ylabel ("frequency");
endfunction

function cost = entropy (coefficient)
  square = coefficient ^ 2;
  cost = 0;
  if (square > 0)
    cost = -square * log (square);
  endif
endfunction
