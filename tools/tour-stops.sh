# Sourced by tour.sh: the stops of the tour, in window pixels of the 1020 by 680 dialog.

answer_box() { # the one-button box in the middle of the window
    click "$window" 510 411
}
panel_x=542 panel_y=212 # the page panel, 382 by 394

answer_box
look 02-home
click "$window" 825 130
look 03-monitor-rows 1.5
for row in 0 1 2 3 4 5; do
    click "$window" $((panel_x + 27)) $((panel_y + 39 + 52 * row + 26))
done
look 04-monitor-rows-ticked 1.2
click "$window" $((panel_x + 362)) $((panel_y + 19))
look 05-monitor-graphs 12
xdotool mousemove $((X + panel_x + 357)) $((Y + panel_y + 130))
look 06-graph-crosshair 1.2
click "$window" 825 130
look 07-closed-again 1.5
click "$window" 650 531 # the lower right of the ring's band
click "$window" 510 577
look 08-memory-readout 1.2
click "$window" 1005 71
look 09-settings 1.5
