# Sourced by tour.sh: the stops of the tour, in window pixels of the 1020 by 680 dialog.

panel_x=542 panel_y=212      # the page panel, 382 by 394
settings_x=510 settings_y=166 # the settings panel, 470 by 440

# choose X Y KEY...: opens the list at a place and picks from it by keys
choose() {
    click "$window" "$1" "$2"
    sleep 0.5
    shift 2
    xdotool key "$@" Return
    sleep 0.5
}
hover() { xdotool mousemove $((X + $1)) $((Y + $2)); }

click "$window" 510 411 # the one button of the first start's question
look home
click "$window" 125 134
sleep 1.5
click "$window" $((panel_x + 28)) $((panel_y + 325)) # the gradient
look led-gradient 2
click "$window" 825 130
look monitor-rows 1.5
for row in 0 1 2 3 4 5; do
    click "$window" $((panel_x + 27)) $((panel_y + 39 + 52 * row + 26))
done
hover 300 600
look monitor-rows-ticked 1.2
click "$window" $((panel_x + 362)) $((panel_y + 19))
look monitor-graphs 14
hover $((panel_x + 358)) $((panel_y + 130))
look graph-crosshair 1.2

click "$window" 910 130
look adjust-question 1
click "$window" 435 395 # yes
look adjust 3
click "$window" $((panel_x + 60)) $((panel_y + 382)) # a free spot of the page
click "$window" 910 130
click "$window" 215 130
look lcd 3
click "$window" $((panel_x + 33)) $((panel_y + 175)) # by hot key
click "$window" $((panel_x + 33)) $((panel_y + 254)) # and off
look lcd-off 1.2
click "$window" $((panel_x + 33)) $((panel_y + 254))
hover 300 600
look lcd-by-hot-key 1
click "$window" 215 130

click "$window" 1005 71
look settings 1.5
choose $((settings_x + 361)) $((settings_y + 195)) Down
look settings-english 1
click "$window" 1005 71
look home-english 1.5
click "$window" 510 577 # the lowest segment of the ring
look memory-readout 1.2
click "$window" 215 130
look lcd-english 3
click "$window" $((panel_x + 133)) $((panel_y + 368)) # apply
look lcd-question 1
click "$window" 585 395 # no
click "$window" 215 130
sleep 1
choose 510 110 Down
look second-card 2
click "$window" 825 130
look second-card-rows 2

choose 510 110 Up
click "$window" 290 62
look card-information-english 2
click "$window" 1005 71
sleep 1.5
choose $((settings_x + 361)) $((settings_y + 195)) Up
click "$window" 1005 71
look card-information 2
